// Says how an export ended to who is looking at something else.
#pragma once

#include "editor/flowtide_view_model.h"
#include "ui/desktop_notification.h"

#include <QWidget>

namespace flowtide {

/// Tells the desktop when an export ends while its window is not in front. A cancellation is not worth telling.
class ExportNotice final {
public:
    /// Both outlive it.
    ExportNotice(FlowtideViewModel& model, const QWidget& window);

private:
    void exportEnded();

    FlowtideViewModel& model_;
    const QWidget& window_;
    DesktopNotification notification_;
    Subscription changes_;
};

} // namespace flowtide
