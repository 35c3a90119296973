#include "ui/panes/alert_sheet.h"

#include "ui/session_text.h"

namespace flowtide {

AlertSheet::AlertSheet(FlowtideViewModel& model, QWidget* parent)
    : MessageSheet(parent)
    , model_(model) {
    onClose = [this] { model_.dismissError(); };
    changes_ = model_.subscribe(properties({Property::errorMessage}), [this](const PropertySet&) { refresh(); });
    refresh();
}

void AlertSheet::refresh() {
    const auto& message = model_.alert().errorMessage();
    // While it goes away it says what it said.
    if (!message) return;
    Content content{QStringLiteral("warning"), sessionText(message->sentence), {}, {}};
    if (!message->reason.empty()) content.paragraphs << QString::fromStdString(message->reason);
    setContent(content);
}

} // namespace flowtide
