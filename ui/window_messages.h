// What the window says for itself, in sheets.
#pragma once

#include "ui/panes/message_sheet.h"
#include "ui/sheet_host.h"

#include <QCoreApplication>
#include <functional>

namespace flowtide {

class WindowMessages {
    Q_DECLARE_TR_FUNCTIONS(flowtide::WindowMessages)

public:
    explicit WindowMessages(SheetHost& sheets);

    void showWhatsNew();
    void showAbout();
    /// Where updates come from.
    void showUpdates();
    /// Asks before an export is given up; `end` is called when that is wanted.
    void askToEndExport(std::function<void()> end);

private:
    void show(const MessageSheet::Content& content);

    SheetHost& sheets_;
    MessageSheet* sheet_; ///< child of the sheets' host
};

} // namespace flowtide
