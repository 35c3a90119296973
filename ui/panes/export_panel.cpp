#include "ui/panes/export_panel.h"

#include "ui/theme.h"

#include <QPainter>

namespace flowtide {

ExportPanel::ExportPanel(SessionHost&, std::function<void(Command)>, QWidget* parent)
    : QWidget(parent) {}

void ExportPanel::setDestination(const std::filesystem::path&) {}
bool ExportPanel::dismiss() {
    return false;
}

void ExportPanel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), theme::pane);
}

} // namespace flowtide
