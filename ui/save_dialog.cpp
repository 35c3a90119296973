#include "ui/save_dialog.h"

#include "ui/value_text.h"

#include <QCoreApplication>
#include <QFileDialog>
#include <QMessageBox>

namespace flowtide {

std::optional<std::filesystem::path> askWhereToSave(QWidget& window, const SaveRequest& request) {
    std::filesystem::path proposed = request.proposed;
    while (true) {
        const QString chosen =
            QFileDialog::getSaveFileName(&window, request.title, valueText::path(proposed), request.kind);
        if (chosen.isEmpty()) return {};
        std::filesystem::path file = valueText::path(chosen);
        if (request.isOfKind(file)) return file;
        // The dialog has asked about the name as it was typed, not about the one that it gets here.
        file += request.proposed.extension();
        std::error_code unknown;
        if (!std::filesystem::exists(file, unknown)) return file;
        const QString question =
            QCoreApplication::translate("SaveDialog", "%1 already exists. Do you want to replace it?")
                .arg(valueText::fileName(file));
        if (QMessageBox::question(&window, request.title, question) == QMessageBox::Yes) return file;
        proposed = file;
    }
}

} // namespace flowtide
