// How the preview is rendered.
#pragma once

#include "ui/controls/choice.h"
#include "ui/controls/switch.h"
#include "ui/panes/inspector_section.h"
#include "ui/panes/inspector_session.h"

#include <QWidget>

namespace flowtide {

class PreviewSection final : public QWidget {
    Q_OBJECT

public:
    explicit PreviewSection(const InspectorSession& session, QWidget* parent = nullptr);

private:
    void refresh();

    FlowtideViewModel& model_;
    Switch* idle_;
    Choice* resolution_;
    Subscription changes_;
};

} // namespace flowtide
