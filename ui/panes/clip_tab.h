// The inspector's tab about the clip itself.
#pragma once

#include "ui/controls/buttons.h"
#include "ui/controls/labels.h"
#include "ui/paced.h"
#include "ui/panes/inspector_section.h"
#include "ui/panes/inspector_session.h"

#include <QWidget>

namespace flowtide {

class ClipTab final : public QWidget {
    Q_OBJECT

public:
    explicit ClipTab(const InspectorSession& session, QWidget* parent = nullptr);

private:
    void showClip();
    void refreshProxy();
    void refreshExport();
    QWidget* makeProxySection();
    QWidget* makeExportSection();

    FlowtideViewModel& model_;
    QVBoxLayout* column_;
    QWidget* facts_ = nullptr; ///< the sections about the clip, made anew for each
    Button* build_;
    QWidget* progressRow_;
    LineLabel* progressShare_;
    ProgressBar* progress_;
    Button* cancel_;
    LineLabel* ready_;
    Paragraph* failure_;
    QWidget* exportSection_;
    Paragraph* exportSummary_;
    Paced proxyProgress_{[this] { refreshProxy(); }};
    Subscription clipChanges_;
    Subscription proxyChanges_;
    Subscription exportChanges_;
};

} // namespace flowtide
