#include "ui/main_window.h"

#include "ui/accessible_role.h"
#include "ui/command_rules.h"
#include "ui/controls/field.h"
#include "ui/graph/timeline_pane.h"
#include "ui/key_names.h"
#include "ui/keys_owner.h"
#include "ui/openable.h"
#include "ui/panes/inspector.h"
#include "ui/panes/projects_sidebar.h"
#include "ui/release_notes.h"
#include "ui/save_dialog.h"
#include "ui/session_text.h"
#include "ui/theme.h"
#include "ui/value_text.h"
#include "ui/viewer/transport_bar.h"
#include "ui/viewer/viewer_pane.h"

#include <QApplication>
#include <QCloseEvent>
#include <QFileDialog>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QPointer>
#include <QStandardPaths>
#include <algorithm>

namespace flowtide {

namespace {

constexpr QSize smallestWindow{880, 568};
constexpr QSize usualWindow{1440, 900};

bool isTyping() {
    return qobject_cast<QLineEdit*>(QApplication::focusWidget()) != nullptr;
}

/// A field takes Esc to bring its value back, where it has another.
bool isFieldEdited() {
    const auto* field = qobject_cast<Field*>(QApplication::focusWidget());
    return field && field->isEdited();
}

/// What keys do in a field, where the editor has a meaning of its own for them.
bool belongsToField(const QKeyEvent& event) {
    const bool isCommand = event.modifiers() & Qt::ControlModifier;
    if (!isCommand) return true;
    switch (event.key()) {
    case Qt::Key_A:
    case Qt::Key_C:
    case Qt::Key_V:
    case Qt::Key_X:
    case Qt::Key_Y:
    case Qt::Key_Z:
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Backspace:
    case Qt::Key_Delete:
        return true;
    default:
        return false;
    }
}

bool isOpenable(const std::filesystem::path& file) {
    return openable::isClip(file) || openable::isProject(file);
}

QString clipFilter() {
    return MainWindow::tr("Clips and projects") + QStringLiteral(" (*.mov *.mp4 *.m4v *.flowtide *.MOV *.MP4 *.M4V)");
}

} // namespace

MainWindow::MainWindow(SessionHost& host)
    : host_(host)
    , model_(host.model())
    , exportNotice_(host.model(), *this)
    , fullScreen_(host, [this](Command command) { perform(command); }) {
    const auto run = [this](Command command) { perform(command); };
    setWindowTitle(tr("Loftwell Video"));
    setMinimumSize(smallestWindow);
    resize(usualWindow);
    setAcceptDrops(true);
    setFocusPolicy(Qt::StrongFocus);

    topBar_ = new TopBar(model_, run, this);
    topBar_->setMenu(makeMenu());
    start_ = new StartScreen(host, run, this);
    viewer_ = new ViewerPane(host);
    timeline_ = new TimelinePane(host);
    auto* sidebar = new ProjectsSidebar(host);
    auto* inspector = new Inspector(host);
    auto* transport = new TransportBar(host, run);
    workspace_ = new Workspace({sidebar, inspector, viewer_, transport, timeline_}, host.settings(), this);
    relink_ = new RelinkView(model_, workspace_);
    relink_->hide();
    exportPanel_ = new ExportPanel(model_, run, this);
    exportPanel_->onResized = [this] { place(); };
    sheets_ = new SheetHost(*this);
    shortcutSheet_ = new ShortcutSheet(sheets_);
    shortcutSheet_->onClose = [this] { sheets_->close(); };
    shortcutSheet_->hide();
    alert_ = new AlertSheet(model_, sheets_);
    alert_->hide();
    drop_ = new DropOverlay(*this);
    messages_ = std::make_unique<WindowMessages>(*sheets_);
    focusRing_ = new FocusRing(*this);
    const auto nameIt = [](QWidget& pane, const QString& name) {
        setAccessibleRole(pane, QAccessible::Pane);
        pane.setAccessibleName(name);
    };
    nameIt(*topBar_, tr("Top bar"));
    nameIt(*sidebar, tr("Projects"));
    nameIt(*viewer_, tr("Viewer"));
    nameIt(*transport, tr("Transport"));
    nameIt(*timeline_, tr("Timeline"));
    nameIt(*inspector, tr("Inspector"));
    nameIt(*start_, tr("Start screen"));
    nameIt(*workspace_, tr("Workspace"));
    // The graph for itself, then what else the timeline has.
    panes_ = {topBar_, sidebar, viewer_, transport, timeline_->graph(), timeline_, inspector};

    const auto openProject = [this](const RecentProject& project) {
        if (const auto file = project.projectURL.filePath()) model_.openProject(*file);
    };
    start_->onProject = openProject;
    sidebar->onProject = openProject;
    relink_->onLocate = [this] { locateClip(); };
    inspector->onSpeedPageShown = [viewer = QPointer(viewer_)](bool isShown) {
        if (viewer) viewer->setFailuresToldElsewhere(isShown); // panes are hidden as the window goes, too
    };
    viewer_->onHint = [this](const QString& hint) { timeline_->setPictureHint(hint); };
    workspace_->onPanesChanged = [this] {
        topBar_->showPanes(workspace_->showsSidebar(), workspace_->showsInspector());
    };
    connect(sheets_, &SheetHost::closed, this, [this] {
        if (model_.alert().showError()) sheets_->show(*alert_);
    });

    changes_ = model_.subscribe(
        properties({Property::clip, Property::pendingRelinkProject, Property::isOpening, Property::errorMessage}),
        [this](const PropertySet& changed) { refresh(changed); });
    qApp->installEventFilter(this);
    showContent();
    const QString seen = host_.settings().lastSeenVersion();
    if (releaseNotes::areNewFor(seen)) messages_->showWhatsNew();
    if (seen != releaseNotes::version()) host_.settings().setLastSeenVersion(releaseNotes::version());
}

MainWindow::~MainWindow() = default;

void MainWindow::refresh(const PropertySet&) {
    showContent();
    // A project that waits for its clip says itself why a file is not that.
    const auto& message = model_.alert().errorMessage();
    if (message && message->reason.empty() && model_.clips().pendingRelinkProject()) {
        relink_->showRefusal(sessionText(message->sentence));
        return model_.dismissError();
    }
    if (model_.alert().showError())
        sheets_->show(*alert_);
    else if (sheets_->sheet() == alert_)
        sheets_->close();
}

void MainWindow::showContent() {
    const bool isRelinking = model_.clips().pendingRelinkProject().has_value();
    const bool hasProject = model_.clip() || isRelinking;
    workspace_->setCover(isRelinking ? relink_ : nullptr);
    start_->setVisible(!hasProject);
    if (hasProject && !workspace_->isVisible() && timeline_->graph()) timeline_->graph()->setFocus();
    workspace_->setVisible(hasProject);
    topBar_->showPanes(workspace_->showsSidebar(), workspace_->showsInspector());
    setWindowTitle(commandRules::isClipSeen(model_)
                       ? tr("%1 – Loftwell Video").arg(valueText::fileName(model_.clip()->url))
                       : tr("Loftwell Video"));
    place();
}

void MainWindow::resizeEvent(QResizeEvent*) {
    place();
}

void MainWindow::place() {
    const QRect content(0, TopBar::barHeight, width(), std::max(height() - TopBar::barHeight, 0));
    topBar_->setGeometry(0, 0, width(), TopBar::barHeight);
    start_->setGeometry(content);
    workspace_->setGeometry(content);
    exportPanel_->move(width() - exportPanel_->width() - 12, TopBar::barHeight + 4);
    exportPanel_->raise();
    if (sheets_->isVisible()) sheets_->raise();
    sheets_->place();
}

void MainWindow::openFile(const std::filesystem::path& file) {
    if (openable::isProject(file))
        model_.openProject(file);
    else
        model_.importClip(file);
}

void MainWindow::perform(Command command) {
    if (commandRules::leavesFullScreen(command)) fullScreen_.leave();
    switch (command) {
    case Command::open:
        return chooseFile();
    case Command::save:
        return model_.saveProjectNow();
    case Command::saveCopy:
        return chooseCopy();
    case Command::closeProject:
        return model_.reset();
    case Command::exportClip:
        return beginExport();
    case Command::quit:
        close();
        return;
    case Command::toggleSidebar:
        return workspace_->toggleSidebar();
    case Command::toggleInspector:
        return workspace_->toggleInspector();
    case Command::showShortcuts:
        return sheets_->show(*shortcutSheet_);
    case Command::playPause:
        return model_.togglePlayback();
    case Command::shuttleBackward:
        return model_.shuttleBackward();
    case Command::shuttleStop:
        return model_.pausePlayback();
    case Command::shuttleForward:
        return model_.shuttleForward();
    case Command::previousFrame:
        return model_.nudgePlayhead(-1);
    case Command::nextFrame:
        return model_.nudgePlayhead(1);
    case Command::previousPoint:
        if (fullScreen_.isVisible()) return model_.scrub(0);
        return model_.jumpToPreviousKeyframe();
    case Command::nextPoint:
        if (fullScreen_.isVisible()) return model_.scrub(1);
        return model_.jumpToNextKeyframe();
    case Command::fullScreen:
        if (fullScreen_.isVisible())
            fullScreen_.leave();
        else if (model_.clip())
            fullScreen_.open(*this);
        return;
    case Command::trimStart:
        return model_.applyTrimRange(model_.playheadSeconds(), model_.curve().trimRange().upper);
    case Command::trimEnd:
        return model_.applyTrimRange(model_.curve().trimRange().lower, model_.playheadSeconds());
    case Command::addZoom:
        return model_.addOrSelectZoomBlock();
    case Command::deleteZoom:
        if (const auto& id = model_.zoom().selectedZoomBlockID()) model_.removeZoomBlock(Uuid(*id));
        return;
    case Command::toggleCrop:
        return model_.setVerticalCropEnabled(!model_.framing().isVerticalCropEnabled());
    case Command::switchCurve:
        return model_.setEditorMode(model_.timeline().editorMode() == CurveEditorMode::speed
                                        ? CurveEditorMode::cropCenter
                                        : CurveEditorMode::speed);
    case Command::undo:
        return model_.undo();
    case Command::redo:
        return model_.redo();
    case Command::zoomIn:
    case Command::zoomOut:
    case Command::zoomToFit:
    case Command::panLeft:
    case Command::panRight:
    case Command::deletePoints:
    case Command::copyPoints:
    case Command::pastePoints:
    case Command::selectAllPoints:
    case Command::insertPoint:
        return timeline_->perform(command);
    }
}

bool MainWindow::eventFilter(QObject* watched, QEvent* event) {
    const bool isAsked = event->type() == QEvent::ShortcutOverride;
    if (!isAsked && event->type() != QEvent::KeyPress) return false;
    // Keys come to the focused widget; those that pass through windows and menus are left alone.
    auto* widget = qobject_cast<QWidget*>(watched);
    if (!widget || (widget->window() != this && widget->window() != &fullScreen_)) return false;
    if (QApplication::activePopupWidget() || QApplication::activeModalWidget()) return false;
    const auto key = static_cast<QKeyEvent*>(event);
    if (!handleKey(*key, isAsked)) return false;
    event->accept();
    return true;
}

bool MainWindow::handleKey(QKeyEvent& event, bool isOnlyAsked) {
    const auto modifiers = event.modifiers() & ~(Qt::KeypadModifier | Qt::GroupSwitchModifier);
    if (event.key() == Qt::Key_Escape && !isFieldEdited()) return isOnlyAsked || endTopmost();
    // In full screen a sheet waits behind the picture.
    const QWidget* sheet = fullScreen_.isVisible() ? nullptr : sheets_->sheet();
    if (event.key() == Qt::Key_F6 && !(modifiers & ~Qt::ShiftModifier)) {
        if (!isOnlyAsked && !sheet && !fullScreen_.isVisible()) walkPanes(modifiers & Qt::ShiftModifier ? -1 : 1);
        return true;
    }
    const auto binding = Shortcuts::bindingFor(QKeyCombination(modifiers, static_cast<Qt::Key>(event.key())));
    if (!binding || (isTyping() && belongsToField(event))) return false;
    // A sheet leaves nothing but itself to be reached.
    if (sheet) {
        const bool closes = sheet == shortcutSheet_ && binding->command == Command::showShortcuts;
        if (closes && !isOnlyAsked) sheets_->close();
        return closes;
    }
    const KeysOwner owner = keysOwner(QApplication::focusWidget());
    if (binding->scope == KeyScope::workspace) {
        if (owner == KeysOwner::control) return false;
        if (binding->command == Command::switchCurve && owner != KeysOwner::editor) return false;
    }
    if (commandRules::needsClip(binding->command) && !commandRules::isClipSeen(model_)) return false;
    if (commandRules::needsProject(binding->command) && !workspace_->isVisible()) return false;
    if (!isOnlyAsked && (!event.isAutoRepeat() || commandRules::repeats(binding->command))) perform(binding->command);
    return true;
}

bool MainWindow::endTopmost() {
    if (fullScreen_.isVisible()) {
        fullScreen_.leave();
        return true;
    }
    if (sheets_->sheet() == alert_) {
        model_.dismissError();
        return true;
    }
    if (sheets_->sheet()) {
        sheets_->close();
        return true;
    }
    return workspace_->closeDrawer() || viewer_->endTracking() || exportPanel_->dismiss() || viewer_->endComparison();
}

void MainWindow::walkPanes(int direction) {
    const QWidget* focused = QApplication::focusWidget();
    const int count = static_cast<int>(panes_.size());
    const auto holder = std::find_if(panes_.begin(), panes_.end(), [&](const QWidget* pane) {
        return focused && (pane == focused || pane->isAncestorOf(focused));
    });
    int at = holder == panes_.end() ? (direction > 0 ? -1 : count) : static_cast<int>(holder - panes_.begin());
    for (int tries = 0; tries < count; ++tries) {
        at = (at + direction + count) % count;
        QWidget* pane = panes_[static_cast<std::size_t>(at)];
        if (!pane->isVisibleTo(this)) continue;
        QWidget* first = pane == timeline_ ? timeline_->firstLane() : pane;
        // The first in the pane that takes the focus.
        for (QWidget* next = first; next && (next == pane || pane->isAncestorOf(next)); next = next->nextInFocusChain())
            if (next->focusPolicy() & Qt::TabFocus && next->isVisibleTo(this) && next->isEnabled()) {
                next->setFocus(Qt::TabFocusReason);
                return;
            }
    }
}

QMenu* MainWindow::makeMenu() {
    auto* menu = new QMenu(this);
    const auto add = [this, menu](const QString& text, const QString& keys, Command command) {
        const QString shown = keys.isEmpty() ? text : text + u'\t' + keyNames::local(keys);
        return menu->addAction(shown, this, [this, command] { perform(command); });
    };
    add(tr("Open…"), QStringLiteral("⌘O"), Command::open);
    QList<QAction*> forClip;
    forClip << add(tr("Save project"), QStringLiteral("⌘S"), Command::save);
    forClip << add(tr("Save a copy…"), QStringLiteral("⇧⌘S"), Command::saveCopy);
    forClip << add(tr("Close project"), QStringLiteral("⌘W"), Command::closeProject);
    forClip << add(tr("Export…"), QStringLiteral("⌘E"), Command::exportClip);
    menu->addSeparator();
    forClip << menu->addAction(tr("Reset curve"), this, [this] { model_.resetCurve(); });
    forClip << menu->addAction(tr("Reset framing"), this, [this] { model_.resetCenterCurve(); });
    forClip << add(tr("Set trim start to the playhead"), QStringLiteral("Q"), Command::trimStart);
    forClip << add(tr("Set trim end to the playhead"), QStringLiteral("W"), Command::trimEnd);
    forClip << menu->addAction(tr("Reset trim"), this, [this] { model_.resetTrimRange(); });
    menu->addSeparator();
    forClip << add(tr("Full-screen preview"), QStringLiteral("⌘F"), Command::fullScreen);
    QAction* mute = menu->addAction(tr("Mute"), this, [this] { model_.setMuted(!model_.transport().isMuted()); });
    mute->setCheckable(true);
    forClip << mute;
    menu->addSeparator();
    add(tr("Keyboard Shortcuts"), QStringLiteral("?"), Command::showShortcuts);
    menu->addAction(tr("What's New"), this, [this] { messages_->showWhatsNew(); });
    menu->addAction(tr("Check for Updates…"), this, [this] { messages_->showUpdates(); });
    menu->addAction(tr("About"), this, [this] { messages_->showAbout(); });
    connect(menu, &QMenu::aboutToShow, this, [this, forClip, mute] {
        mute->setChecked(model_.transport().isMuted());
        for (QAction* action : forClip)
            action->setEnabled(commandRules::isClipSeen(model_));
    });
    return menu;
}

void MainWindow::chooseFile() {
    const QString file = QFileDialog::getOpenFileName(this, tr("Open a clip or project"), {}, clipFilter());
    if (!file.isEmpty()) openFile(valueText::path(file));
}

void MainWindow::chooseCopy() {
    const auto clip = model_.clip();
    if (!clip) return;
    const auto file =
        askWhereToSave(*this, {tr("Save a copy"), clip->url.parent_path() / (clip->url.stem().native() + ".flowtide"),
                               tr("Projects") + QStringLiteral(" (*.flowtide)"), openable::isProject});
    // Another clip may have been opened beside the dialog.
    if (file && model_.clip() == clip) model_.saveProjectCopy(*file);
}

void MainWindow::beginExport() {
    const auto& clip = model_.clip();
    if (!clip) return;
    if (model_.exporting().isExporting()) return exportPanel_->reveal();
    if (clip->videoCodecType)
        chooseExport();
    else
        exportPanel_->askAboutCodec([this] { chooseExport(); });
}

void MainWindow::chooseExport() {
    const auto clip = model_.clip();
    if (!clip || model_.exporting().isExporting()) return;
    const QString name = tr("%1 retimed").arg(valueText::path(clip->url.stem()));
    const auto proposed = clip->url.parent_path() / valueText::path(name + valueText::path(clip->url.extension()));
    const auto file = askWhereToSave(
        *this, {tr("Export"), proposed, tr("Movies") + QStringLiteral(" (*.mov *.mp4 *.m4v)"), openable::isClip});
    if (file && model_.clip() == clip) model_.exportClip(*file);
}

void MainWindow::locateClip() {
    const QString file = QFileDialog::getOpenFileName(this, tr("Locate the original clip"), {}, clipFilter());
    if (file.isEmpty()) return;
    relink_->setChosen(valueText::path(file));
    model_.relinkProject(valueText::path(file));
}

void MainWindow::closeEvent(QCloseEvent* event) {
    fullScreen_.leave();
    if (model_.exporting().isExporting() && !endsExport_) {
        messages_->askToEndExport([this] {
            endsExport_ = true;
            close();
        });
        return event->ignore();
    }
    event->accept();
    QApplication::quit();
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
    const auto file = openable::droppedFile(*event->mimeData());
    if (!file) return;
    // Refused while it moves, so that its leaving is told.
    showDrop(valueText::fileName(*file), isOpenable(*file));
    event->acceptProposedAction();
}

void MainWindow::dragMoveEvent(QDragMoveEvent* event) {
    const auto file = openable::droppedFile(*event->mimeData());
    if (file && isOpenable(*file))
        event->acceptProposedAction();
    else
        event->ignore();
}

void MainWindow::dragLeaveEvent(QDragLeaveEvent*) {
    showDrop({}, false);
}

void MainWindow::showDrop(const QString& name, bool canOpen) {
    start_->showDrop(name, canOpen);
    drop_->showDrop(start_->isVisible() ? QString() : name, canOpen);
}

void MainWindow::dropEvent(QDropEvent* event) {
    showDrop({}, false);
    const auto file = openable::droppedFile(*event->mimeData());
    if (file && isOpenable(*file)) openFile(*file);
}

} // namespace flowtide
