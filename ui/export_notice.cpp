#include "ui/export_notice.h"

#include "ui/show_in_folder.h"
#include "ui/value_text.h"

#include <QCoreApplication>

namespace flowtide {

namespace {
QString translated(const char* text) {
    return QCoreApplication::translate("ExportNotice", text);
}
} // namespace

ExportNotice::ExportNotice(FlowtideViewModel& model, const QWidget& window)
    : model_(model)
    , window_(window)
    , changes_(model.subscribe(properties({Property::lastExportEnd}), [this](const PropertySet&) { exportEnded(); })) {}

void ExportNotice::exportEnded() {
    const auto& end = model_.exporting().lastExportEnd();
    if (!end || window_.isActiveWindow()) return;
    const std::filesystem::path file = model_.exporting().destination();
    if (end->kind == ExportEnd::Kind::verified)
        notification_.show(translated("Last export verified"), valueText::fileName(file), translated("Show in folder"),
                           [file] { showInFolder(file); });
    else if (end->kind == ExportEnd::Kind::failed)
        notification_.show(translated("Export failed"), QString::fromStdString(end->failure));
}

} // namespace flowtide
