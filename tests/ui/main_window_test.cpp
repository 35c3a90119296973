// The window as a whole: which key reaches what, whatever has the focus, and what is kept between runs.
#include "tests/support/scripted_media.h"
#include "tests/support/temporary_folder.h"
#include "ui/controls/field.h"
#include "ui/graph/clip_lane.h"
#include "ui/graph/coverage_bar.h"
#include "ui/graph/curve_graph.h"
#include "ui/graph/flow_lane.h"
#include "ui/graph/trim_handle.h"
#include "ui/graph/zoom_lane_view.h"
#include "ui/main_window.h"
#include "ui/panes/inspector.h"
#include "ui/panes/project_button.h"
#include "ui/panes/projects_sidebar.h"
#include "ui/release_notes.h"
#include "ui/viewer/transport_bar.h"
#include "ui/viewer/video_surface.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QFileDialog>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMessageBox>
#include <QMimeData>
#include <QScreen>
#include <QTest>
#include <QTimer>
#include <QWindow>
#include <cstdlib>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace flowtide::test {
namespace {

/// With a clip of two seconds at 25 fps open.
class MainWindowTest : public testing::Test {
protected:
    void SetUp() override {
        motion::setReduced(true);
        qputenv("FLOWTIDE_STATE_DIR", QByteArray::fromStdString((folder / "state").string()));
        writeFile(folder / "clip.mov", "clip");
        settings().setLastSeenVersion(releaseNotes::version());
        start();
        window->openFile(folder / "clip.mov");
        ASSERT_TRUE(QTest::qWaitFor([&] { return model().clip() != nullptr; }));
        QCoreApplication::processEvents();
    }
    void TearDown() override {
        end();
        qunsetenv("FLOWTIDE_STATE_DIR");
    }
    void start() {
        host = std::make_unique<SessionHost>(
            WindowPlatform{backend, [](AudioFormat, const AudioPull&, const PlaybackClock&) { return nullptr; }},
            settings());
        window = std::make_unique<MainWindow>(*host);
        window->resize(1440, 900);
        window->show();
        window->activateWindow();
        QCoreApplication::processEvents();
    }
    void end() {
        window.reset();
        host.reset();
        kept.reset();
    }
    UserSettings& settings() {
        if (!kept) kept = std::make_unique<UserSettings>(QString::fromStdString((folder / "settings.ini").string()));
        return *kept;
    }
    FlowtideViewModel& model() { return host->model(); }
    template <typename Part>
    Part* part() const {
        return window->findChild<Part*>();
    }
    /// All that the keyboard can reach, with every tab of the inspector.
    std::vector<QWidget*> controls() const {
        std::vector<QWidget*> found{window.get()};
        for (auto* each : window->findChildren<QWidget*>())
            if (each->focusPolicy() & Qt::TabFocus && each->isVisible() && each->isEnabled()) found.push_back(each);
        return found;
    }
    static bool isAny(const QWidget* widget, const std::vector<const QMetaObject*>& kinds) {
        return std::any_of(kinds.begin(), kinds.end(),
                           [&](const QMetaObject* kind) { return widget->metaObject()->inherits(kind); });
    }
    /// Whether the window takes a key from what has the focus.
    bool takes(QWidget* focused, Qt::Key key, Qt::KeyboardModifiers modifiers) {
        focused->setFocus();
        QKeyEvent event(QEvent::ShortcutOverride, key, modifiers);
        return window->eventFilter(focused, &event);
    }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QWidget* focused = QApplication::focusWidget();
        QTest::keyClick(focused ? focused : window.get(), key, modifiers);
        QCoreApplication::processEvents();
    }
    /// Everything that keys change.
    std::string state() {
        const FlowtideViewModel& now = model();
        const QWidgetList windows = QApplication::topLevelWidgets();
        const bool isFullScreen = std::any_of(windows.begin(), windows.end(), [](const QWidget* each) {
            return qobject_cast<const FullScreenPreview*>(each) && each->isVisible();
        });
        return fmt::format(
            "playhead {:.4f} plays {} at {} zoom {:.3f} center {:.3f} trim {:.3f}-{:.3f} blocks {} "
            "crop {} mode {} points {} selected {} steps {}/{} panes {}{}{}{}",
            now.playheadSeconds(), now.transport().isPlaying() || now.transport().isStartingPlayback(),
            now.transport().shuttleRate(), now.timeline().timelineZoom(), now.timeline().timelineCenter(),
            now.curve().trimRange().lower, now.curve().trimRange().upper, now.zoom().zoomBlocks().size(),
            now.framing().isVerticalCropEnabled(), static_cast<int>(now.timeline().editorMode()),
            now.curve().keyframes().size(), host->points().ids().size(), now.history().undoStack().size(),
            now.history().redoStack().size(), part<ProjectsSidebar>()->isVisible(), part<Inspector>()->isVisible(),
            part<ShortcutSheet>()->isVisible(), isFullScreen);
    }

    TemporaryFolder folder;
    ScriptedBackend backend{MediaScript{.source = plainProbe()}};
    std::unique_ptr<UserSettings> kept;
    std::unique_ptr<SessionHost> host;
    std::unique_ptr<MainWindow> window;
};

struct Key {
    Qt::Key key;
    Qt::KeyboardModifiers modifiers{};
};

/// The keys of the reference sheet.
const std::vector<Key> everywhere{
    {Qt::Key_O, Qt::ControlModifier},
    {Qt::Key_S, Qt::ControlModifier},
    {Qt::Key_S, Qt::ControlModifier | Qt::AltModifier},
    {Qt::Key_I, Qt::ControlModifier | Qt::AltModifier},
    {Qt::Key_J},
    {Qt::Key_K},
    {Qt::Key_L},
    {Qt::Key_F, Qt::ControlModifier},
    {Qt::Key_Plus, Qt::ControlModifier},
    {Qt::Key_Minus, Qt::ControlModifier},
    {Qt::Key_Plus},
    {Qt::Key_Equal},
    {Qt::Key_Minus},
    {Qt::Key_Z, Qt::ShiftModifier},
    {Qt::Key_Backslash},
    {Qt::Key_Q},
    {Qt::Key_W},
    {Qt::Key_Z},
    {Qt::Key_Backspace},
    {Qt::Key_V},
    {Qt::Key_Delete},
    {Qt::Key_Z, Qt::ControlModifier},
    {Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier},
    {Qt::Key_Question, Qt::ShiftModifier},
};
const std::vector<Key> unlessTheControlNeedsThem{
    {Qt::Key_Space},
    {Qt::Key_Left},
    {Qt::Key_Right},
    {Qt::Key_Up},
    {Qt::Key_Down},
    {Qt::Key_Left, Qt::ShiftModifier},
    {Qt::Key_Right, Qt::ShiftModifier},
};

TEST_F(MainWindowTest, EveryKeyIsTakenUnderEveryFocus) {
    model().replaceKeyframes({{Uuid::random(), 0, 1, SpeedKeyframeRole::curve},
                              {Uuid::random(), 1, 0.1, SpeedKeyframeRole::curve},
                              {Uuid::random(), 2, 1, SpeedKeyframeRole::curve}});
    host->points().select({model().curve().keyframes()[1].id});
    model().addZoomBlock({0.5, 1.5});
    QCoreApplication::processEvents();
    std::size_t fields = 0;
    std::size_t lanes = 0;
    const auto checkAll = [&] {
        for (QWidget* each : controls()) {
            const bool isField = qobject_cast<QLineEdit*>(each);
            const bool isLane = isAny(each, {&FlowLane::staticMetaObject, &CoverageBar::staticMetaObject,
                                             &ZoomLaneView::staticMetaObject, &TrimHandle::staticMetaObject});
            const bool isEditor =
                each == window.get() || isAny(each, {&CurveGraph::staticMetaObject, &VideoSurface::staticMetaObject});
            fields += isField;
            lanes += isLane;
            const std::string who =
                fmt::format("{} “{}”", each->metaObject()->className(), each->accessibleName().toStdString());
            for (const auto& [key, modifiers] : everywhere) {
                const bool isTyped = !(modifiers & Qt::ControlModifier) || key == Qt::Key_Z;
                EXPECT_EQ(takes(each, key, modifiers), !(isField && isTyped)) << who << ' ' << key;
            }
            for (const auto& [key, modifiers] : unlessTheControlNeedsThem)
                EXPECT_EQ(takes(each, key, modifiers), isLane || isEditor) << who << ' ' << key;
            EXPECT_EQ(takes(each, Qt::Key_Tab, {}), isEditor) << who;
        }
    };
    checkAll();
    model().setEditorMode(CurveEditorMode::cropCenter); // with the inspector's tab
    QCoreApplication::processEvents();
    checkAll();
    EXPECT_GE(fields, 2U);
    EXPECT_GE(lanes, 8U);
}

TEST_F(MainWindowTest, EveryKeyDoesSomething) {
    const auto prepare = [&] {
        model().setEditorMode(CurveEditorMode::speed);
        QCoreApplication::processEvents();
        while (!model().zoom().zoomBlocks().empty())
            model().removeZoomBlock(Uuid(model().zoom().zoomBlocks().front().id));
        model().scrub(0.5);
        model().replaceKeyframes({{Uuid::random(), 0, 1, SpeedKeyframeRole::curve},
                                  {Uuid::random(), 0.6, 1, SpeedKeyframeRole::curve},
                                  {Uuid::random(), 1.4, 1, SpeedKeyframeRole::curve},
                                  {Uuid::random(), 2, 1, SpeedKeyframeRole::curve}});
        model().resetTrimRange();
        model().addZoomBlock({1.5, 1.9});
        model().addZoomBlock({0.1, 0.5});
        model().undo();
        model().selectZoomBlock(model().zoom().zoomBlocks().front().id);
        host->points().select({model().curve().keyframes()[1].id});
        model().setTimelineZoom(3);
        QCoreApplication::processEvents();
    };
    for (const std::vector<Key>& keys : {everywhere, unlessTheControlNeedsThem, {{Qt::Key_Tab}}})
        for (const auto& [key, modifiers] : keys) {
            const bool isSave = key == Qt::Key_S && modifiers == Qt::ControlModifier;
            if (isSave || key == Qt::Key_O) continue;
            prepare();
            if (key == Qt::Key_K) press(Qt::Key_L);
            part<CurveGraph>()->setFocus();
            const std::string before = state();
            press(key, modifiers);
            EXPECT_NE(state(), before) << key << ' ' << modifiers;
            model().pausePlayback();
            press(Qt::Key_Escape); // full screen, and the sheet
        }
}

TEST_F(MainWindowTest, OpeningAndSavingAreAKeyAway) {
    bool isAsked = false;
    QTimer::singleShot(0, window.get(), [&] {
        auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        isAsked = dialog != nullptr;
        if (dialog) dialog->reject();
    });
    press(Qt::Key_O, Qt::ControlModifier);
    EXPECT_TRUE(isAsked);
    const auto file = ProjectStore().projectFile(model().binding().projectID());
    ASSERT_TRUE(QTest::qWaitFor([&] { return std::filesystem::exists(file); }));
    std::filesystem::remove(file);
    press(Qt::Key_S, Qt::ControlModifier);
    EXPECT_TRUE(QTest::qWaitFor([&] { return std::filesystem::exists(file); }));
}

TEST_F(MainWindowTest, TheLayoutOutlivesTheWindow) {
    const auto layout = [&] {
        return std::tuple(part<ProjectsSidebar>()->isVisible(), part<Inspector>()->isVisible(),
                          part<TransportBar>()->y());
    };
    const auto turnDivider = [&](Qt::Key key) {
        for (auto* each : window->findChildren<QWidget*>())
            if (each->accessibleName() == "Divider") each->setFocus();
        press(key);
    };
    const auto usual = layout();
    press(Qt::Key_S, Qt::ControlModifier | Qt::AltModifier);
    press(Qt::Key_I, Qt::ControlModifier | Qt::AltModifier);
    turnDivider(Qt::Key_Down);
    const auto again = [&] {
        end();
        start();
        window->openFile(folder / "clip.mov");
        return QTest::qWaitFor([&] { return model().clip() != nullptr && part<TransportBar>()->isVisible(); });
    };
    ASSERT_TRUE(again());
    const auto chosen = layout();
    EXPECT_FALSE(std::get<0>(chosen));
    EXPECT_FALSE(std::get<1>(chosen));
    EXPECT_GT(std::get<2>(chosen), std::get<2>(usual));
    press(Qt::Key_S, Qt::ControlModifier | Qt::AltModifier);
    press(Qt::Key_I, Qt::ControlModifier | Qt::AltModifier);
    turnDivider(Qt::Key_Up);
    ASSERT_TRUE(again());
    EXPECT_EQ(layout(), usual);
}

TEST_F(MainWindowTest, EscTakesTheDraggedDividerBack) {
    QWidget* divider = nullptr;
    for (auto* each : window->findChildren<QWidget*>())
        if (each->accessibleName() == "Divider") divider = each;
    ASSERT_TRUE(divider);
    const QPoint usual = divider->pos();
    const auto drag = [&] {
        QTest::mousePress(divider, Qt::LeftButton, {}, {10, 4});
        QTest::mouseMove(divider, {10, 44});
        EXPECT_EQ(divider->y(), usual.y() + 40);
    };
    drag();
    press(Qt::Key_Escape);
    EXPECT_EQ(divider->pos(), usual);
    QTest::mouseMove(divider, {10, 24});
    EXPECT_EQ(divider->pos(), usual);
    QTest::mouseRelease(divider, Qt::LeftButton, {}, {10, 24});
    drag();
    QTest::mouseRelease(divider, Qt::LeftButton, {}, {10, 4});
    EXPECT_EQ(divider->y(), usual.y() + 40);
}

TEST_F(MainWindowTest, WhatIsDroppedIsOpenedOrRefused) {
    writeFile(folder / "other.MP4", "another clip");
    writeFile(folder / "notes.txt", "no clip");
    const auto dropped = [&](const QList<QUrl>& urls) {
        QMimeData data;
        if (urls.isEmpty())
            data.setText("words");
        else
            data.setUrls(urls);
        QDragEnterEvent enter({700, 300}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(window.get(), &enter);
        QDragMoveEvent move({710, 300}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(window.get(), &move);
        static_cast<void>(window->grab()); // with what it says of the file
        QDropEvent drop({710, 300}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        if (move.isAccepted()) QApplication::sendEvent(window.get(), &drop);
        QCoreApplication::processEvents();
        return move.isAccepted();
    };
    const auto file = [&](const char* name) {
        return QUrl::fromLocalFile(QString::fromStdString((folder / name).string()));
    };
    const auto first = model().clip();
    for (const QList<QUrl>& urls : {QList<QUrl>{},
                                    {QUrl("https://example.org/clip.mov")},
                                    {file("notes.txt")},
                                    {file("")},
                                    {file("notes.txt"), file("other.MP4")}})
        EXPECT_FALSE(dropped(urls)) << urls.size();
    QDragLeaveEvent leave;
    QApplication::sendEvent(window.get(), &leave);
    QTest::qWait(50);
    EXPECT_EQ(model().clip(), first);
    EXPECT_TRUE(dropped({file("other.MP4"), file("notes.txt")})) << "the first counts";
    EXPECT_TRUE(QTest::qWaitFor([&] { return model().clip() && model().clip() != first; }));
    EXPECT_EQ(model().clip()->url.filename(), "other.MP4");
}

TEST_F(MainWindowTest, AnotherScaleRedrawsEverythingInItsPixels) {
    auto* graph = part<CurveGraph>();
    const auto move = [&](QScreen* screen) {
        window->move(screen->geometry().topLeft());
        window->windowHandle()->setScreen(screen);
        QCoreApplication::processEvents();
    };
    const std::string before = state();
    std::map<double, QImage> pictures; // of the graph, by the scale
    for (int times = 0; times < 2; ++times)
        for (QScreen* screen : QGuiApplication::screens()) {
            move(screen);
            const double scale = screen->devicePixelRatio();
            EXPECT_EQ(window->grab().toImage().size(), scale * QSize(1440, 900));
            const QImage picture = graph->grab().toImage();
            EXPECT_TRUE(times == 0 || picture == pictures[scale]) << "it is as it was " << scale;
            pictures[scale] = picture;
            EXPECT_EQ(state(), before);
        }
    ASSERT_EQ(pictures.size(), 2U);
    // The same picture, but for the edges of letters and lines.
    const QImage& plain = pictures[1];
    const QImage fine = pictures[2].scaled(plain.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    qint64 difference = 0;
    for (int y = 0; y < plain.height(); ++y)
        for (int x = 0; x < plain.width(); ++x)
            difference += std::abs(qGray(fine.pixel(x, y)) - qGray(plain.pixel(x, y)));
    EXPECT_LT(static_cast<double>(difference) / (plain.width() * plain.height()), 2);
}

TEST_F(MainWindowTest, AnExportAsksBeforeItReplacesWhatItCompletesTheNameTo) {
    writeFile(folder / "Ferien.mov", "another film");
    int dialogs = 0;
    QTimer answers;
    answers.callOnTimeout([&] {
        if (auto* question = qobject_cast<QMessageBox*>(QApplication::activeModalWidget()))
            return question->button(QMessageBox::No)->click();
        auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        if (!dialog) return;
        if (++dialogs > 1) return dialog->reject();
        dialog->findChild<QLineEdit*>()->setText("Ferien");
        static_cast<QDialog*>(dialog)->accept();
    });
    answers.start(0);
    press(Qt::Key_E, Qt::ControlModifier);
    EXPECT_EQ(dialogs, 2) << "the first name is asked about";
    EXPECT_FALSE(model().exporting().isExporting());
    EXPECT_EQ(readFile(folder / "Ferien.mov"), "another film");

    dialogs = 0;
    std::filesystem::remove(folder / "Ferien.mov");
    press(Qt::Key_E, Qt::ControlModifier);
    EXPECT_EQ(model().exporting().destination(), folder / "Ferien.mov");
}

TEST_F(MainWindowTest, ASheetKeepsTheFocusAndFullScreenMakesWayForIt) {
    press(Qt::Key_F, Qt::ControlModifier);
    ASSERT_TRUE(state().ends_with("true")) << state();
    press(Qt::Key_Question, Qt::ShiftModifier);
    EXPECT_TRUE(state().ends_with("false"));
    window->activateWindow();
    QCoreApplication::processEvents();
    QWidget* sheet = part<ShortcutSheet>();
    ASSERT_TRUE(sheet->isVisible());
    for (const Qt::Key key : {Qt::Key_F6, Qt::Key_Tab, Qt::Key_Tab, Qt::Key_Backtab}) {
        press(key);
        const QWidget* focused = QApplication::focusWidget();
        EXPECT_TRUE(focused == sheet || sheet->isAncestorOf(focused)) << key;
    }
    press(Qt::Key_Escape);
    EXPECT_FALSE(sheet->isVisible());
}

TEST_F(MainWindowTest, EscEndsWhatIsOnTopUnlessAFieldHasSomethingToRestore) {
    model().setComparisonEnabled(true);
    host->points().select({model().curve().keyframes()[0].id});
    QCoreApplication::processEvents();
    Field* field = nullptr;
    for (auto* each : part<Inspector>()->findChildren<Field*>())
        if (each->isVisible() && each->isEnabled()) field = each;
    ASSERT_TRUE(field);
    field->setFocus();
    QTest::keyClicks(field, "7");
    press(Qt::Key_Escape);
    EXPECT_TRUE(model().comparison().comparisonEnabled());
    press(Qt::Key_Escape);
    EXPECT_FALSE(model().comparison().comparisonEnabled());
}

TEST_F(MainWindowTest, AClickBesideADrawerClosesItAndNothingElse) {
    window->resize(960, 800);
    press(Qt::Key_S, Qt::ControlModifier | Qt::AltModifier);
    ASSERT_TRUE(part<ProjectsSidebar>()->isVisible());
    QTest::mouseClick(part<ProjectsSidebar>(), Qt::LeftButton, {}, {5, 5});
    EXPECT_TRUE(part<ProjectsSidebar>()->isVisible());
    const std::size_t steps = model().history().undoStack().size();
    auto* graph = part<CurveGraph>();
    QTest::mouseClick(graph, Qt::LeftButton, Qt::AltModifier, {graph->width() - 100, 100});
    QCoreApplication::processEvents();
    EXPECT_FALSE(part<ProjectsSidebar>()->isVisible());
    EXPECT_EQ(model().history().undoStack().size(), steps);
}

TEST_F(MainWindowTest, AHeldKeyTogglesOnce) {
    QKeyEvent held(QEvent::KeyPress, Qt::Key_V, {}, {}, true);
    press(Qt::Key_V);
    const bool isOn = model().framing().isVerticalCropEnabled();
    QCoreApplication::sendEvent(part<CurveGraph>(), &held);
    EXPECT_EQ(model().framing().isVerticalCropEnabled(), isOn);
}

TEST_F(MainWindowTest, AMissingClipIsAskedForAboveTheOneThatIsOpen) {
    ASSERT_TRUE(QTest::qWaitFor([&] { return model().binding().recentProjects().size() == 1; }));
    writeFile(folder / "other.mov", "another clip");
    window->openFile(folder / "other.mov");
    ASSERT_TRUE(QTest::qWaitFor([&] { return model().binding().recentProjects().size() == 2; }));
    std::filesystem::remove(folder / "clip.mov");
    QCoreApplication::processEvents();
    ProjectButton* other = nullptr;
    for (auto* row : part<ProjectsSidebar>()->findChildren<ProjectButton*>())
        if (row->isVisible() && !row->isChecked()) other = row;
    ASSERT_TRUE(other);
    QTest::keyClick(other, Qt::Key_Return);
    EXPECT_FALSE(other->isChecked()); // not yet
    ASSERT_TRUE(QTest::qWaitFor([&] { return model().clips().pendingRelinkProject().has_value(); }));
    QCoreApplication::processEvents();
    EXPECT_TRUE(other->isChecked());
    const std::string before = state();
    part<CurveGraph>()->setFocus();
    for (const Qt::Key key : {Qt::Key_Q, Qt::Key_Z, Qt::Key_V})
        press(key);
    EXPECT_EQ(state(), before);

    window->resize(window->minimumSize());
    auto* view = part<RelinkView>();
    view->showRefusal("This is not the clip that the project was made from.");
    for (auto* button : view->findChildren<Button*>())
        EXPECT_TRUE(view->rect().contains(QRect(button->mapTo(view, QPoint()), button->size())))
            << button->text().toStdString();
}

TEST_F(MainWindowTest, F6WalksThePanes) {
    part<CurveGraph>()->setFocus();
    press(Qt::Key_F6);
    EXPECT_EQ(QApplication::focusWidget(), part<FlowLane>());
    press(Qt::Key_F6);
    EXPECT_TRUE(part<Inspector>()->isAncestorOf(QApplication::focusWidget()));
    press(Qt::Key_F6, Qt::ShiftModifier);
    press(Qt::Key_F6, Qt::ShiftModifier);
    EXPECT_EQ(QApplication::focusWidget(), part<CurveGraph>());
}

} // namespace
} // namespace flowtide::test
