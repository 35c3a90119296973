// The editor's window.
#pragma once

#include "ui/controls/focus_ring.h"
#include "ui/export_notice.h"
#include "ui/panes/alert_sheet.h"
#include "ui/panes/drop_overlay.h"
#include "ui/panes/export_panel.h"
#include "ui/panes/relink_view.h"
#include "ui/panes/shortcut_sheet.h"
#include "ui/panes/start_screen.h"
#include "ui/panes/top_bar.h"
#include "ui/session_host.h"
#include "ui/sheet_host.h"
#include "ui/shortcuts.h"
#include "ui/viewer/full_screen_preview.h"
#include "ui/window_messages.h"
#include "ui/workspace.h"

#include <QWidget>
#include <filesystem>
#include <memory>
#include <vector>

class QMenu;

namespace flowtide {

class TimelinePane;
class ViewerPane;

/// Shows the session, and brings keys, menus, drops and dialogs to it.
class MainWindow final : public QWidget {
    Q_OBJECT

public:
    explicit MainWindow(SessionHost& host);
    ~MainWindow() override;

    /// A clip or a project file.
    void openFile(const std::filesystem::path& file);
    void perform(Command command);

    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void refresh(const PropertySet& changed);
    void showContent();
    void place();
    bool handleKey(QKeyEvent& event, bool isOnlyAsked);
    bool endTopmost();
    void walkPanes(int direction);
    QMenu* makeMenu();
    void chooseFile();
    void showDrop(const QString& name, bool canOpen);
    void beginExport();
    void chooseExport();
    void chooseCopy();
    void locateClip();

    SessionHost& host_;
    FlowtideViewModel& model_;
    TopBar* topBar_;
    StartScreen* start_;
    Workspace* workspace_;
    ViewerPane* viewer_;
    TimelinePane* timeline_;
    RelinkView* relink_;
    ExportPanel* exportPanel_;
    SheetHost* sheets_;
    ShortcutSheet* shortcutSheet_;
    AlertSheet* alert_;
    DropOverlay* drop_;
    std::unique_ptr<WindowMessages> messages_;
    bool endsExport_ = false; ///< the user wants to close the window nevertheless
    ExportNotice exportNotice_;
    FocusRing* focusRing_;
    std::vector<QWidget*> panes_; ///< in the order in which F6 walks them
    FullScreenPreview fullScreen_;
    Subscription changes_;
};

} // namespace flowtide
