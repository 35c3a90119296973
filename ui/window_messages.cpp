#include "ui/window_messages.h"

#include "ui/release_notes.h"

#include <utility>

namespace flowtide {

WindowMessages::WindowMessages(SheetHost& sheets)
    : sheets_(sheets)
    , sheet_(new MessageSheet(&sheets)) {
    sheet_->onClose = [this] { sheets_.close(); };
    sheet_->hide();
}

void WindowMessages::show(const MessageSheet::Content& content) {
    sheet_->setContent(content);
    sheets_.show(*sheet_);
}

void WindowMessages::showWhatsNew() {
    show({{}, tr("What’s new in Loftwell Video %1").arg(releaseNotes::version()), releaseNotes::notes(), {}});
}

void WindowMessages::showAbout() {
    show({{}, tr("Loftwell Video %1").arg(releaseNotes::version()), {tr("Smooth speed curves for one clip.")}, {}});
}

void WindowMessages::showUpdates() {
    show(
        {{},
         tr("Loftwell Video %1").arg(releaseNotes::version()),
         {tr("Updates come from where this copy was installed: your system's software manager, or the source code that "
             "it was built from. Loftwell Video itself never connects to the internet.")},
         {}});
}

void WindowMessages::askToEndExport(std::function<void()> end) {
    show({QStringLiteral("warning"),
          tr("An export is running."),
          {tr("Closing the window cancels it. Nothing that is on the disk already is changed.")},
          {{tr("Cancel export and close"), std::move(end), tr("Keep exporting")}}});
}

} // namespace flowtide
