// Following a subject: the way to begin, and what has been followed.
#pragma once

#include "ui/controls/buttons.h"
#include "ui/panes/inspector_section.h"
#include "ui/panes/inspector_session.h"

#include <QWidget>

namespace flowtide {

class SubjectSection final : public QWidget {
    Q_OBJECT

public:
    explicit SubjectSection(const InspectorSession& session, QWidget* parent = nullptr);

private:
    void refresh();

    FlowtideViewModel& model_;
    Button* track_;
    Paragraph* hint_;
    ValueRow* tracked_;
    ValueRow* lost_;
    Subscription changes_;
};

} // namespace flowtide
