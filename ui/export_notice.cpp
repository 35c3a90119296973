#include "ui/export_notice.h"

#include "ui/show_in_folder.h"
#include "ui/value_text.h"

#include <QCoreApplication>

namespace flowtide {

ExportNotice::ExportNotice(FlowtideViewModel& model, const QWidget& window)
    : model_(model)
    , window_(window)
    , changes_(model.subscribe(properties({Property::lastExportEnd}), [this](const PropertySet&) { exportEnded(); })) {}

void ExportNotice::exportEnded() {
    const auto& end = model_.exporting().lastExportEnd();
    if (!end || window_.isActiveWindow()) return;
    const std::filesystem::path file = model_.exporting().destination();
    if (end->kind == ExportEnd::Kind::verified)
        notification_.show(QCoreApplication::translate("ExportNotice", "Last export verified"),
                           valueText::fileName(file), QCoreApplication::translate("ExportNotice", "Show in folder"),
                           [file] { showInFolder(file); });
    else if (end->kind == ExportEnd::Kind::failed)
        notification_.show(QCoreApplication::translate("ExportNotice", "Export failed"),
                           QString::fromStdString(end->failure));
}

} // namespace flowtide
