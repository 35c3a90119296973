// The one message of a window.
#pragma once

#include "editor/flowtide_view_model.h"
#include "ui/panes/message_sheet.h"

namespace flowtide {

/// Shows the session's alert; OK dismisses it.
class AlertSheet final : public MessageSheet {
    Q_OBJECT

public:
    explicit AlertSheet(FlowtideViewModel& model, QWidget* parent = nullptr);

private:
    void refresh();

    FlowtideViewModel& model_;
    Subscription changes_;
};

} // namespace flowtide
