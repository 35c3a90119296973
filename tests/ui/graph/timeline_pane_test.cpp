#include "tests/ui/graph/timeline_stage.h"
#include "ui/graph/clip_lane.h"
#include "ui/graph/curve_graph.h"
#include "ui/graph/ruler.h"
#include "ui/graph/timeline_layout.h"
#include "ui/graph/trim_handle.h"
#include "ui/graph/zoom_lane_view.h"

#include <gmock/gmock.h>

#include <QAccessible>
#include <QApplication>
#include <QContextMenuEvent>
#include <QWheelEvent>
#include <cmath>
#include <tuple>

namespace flowtide {
namespace {

using Timeline = test::TimelineStage;

TEST_F(Timeline, APressOnTheCurveMakesAPointAndHoldsIt) {
    QWidget* graph = pane->graph();
    drag(graph, place(4, 1), place(5, 1.97));
    ASSERT_EQ(keyframes().size(), 3);
    EXPECT_NEAR(keyframes()[1].time, 5, 0.011);
    EXPECT_EQ(keyframes()[1].speed, 2); // snapped
    EXPECT_EQ(points.single(), keyframes()[1].id);

    drag(graph, place(5, 2), place(5, 1.03), Qt::ControlModifier);
    EXPECT_NE(keyframes()[1].speed, 1);
    EXPECT_NEAR(keyframes()[1].speed, 1.03, 0.02);
    // Each drag is one step.
    model->undo();
    EXPECT_EQ(keyframes()[1].speed, 2);
    model->undo();
    EXPECT_EQ(keyframes().size(), 2);
}

TEST_F(Timeline, EmptyGroundScrubsAndShiftSelects) {
    QWidget* graph = pane->graph();
    drag(graph, place(2, 0.2), place(6, 0.2));
    EXPECT_NEAR(model->playheadSeconds(), 6, 0.011);
    EXPECT_EQ(keyframes().size(), 2);

    QTest::mouseClick(graph, Qt::LeftButton, Qt::AltModifier, place(3, 0.25));
    QTest::mouseClick(graph, Qt::LeftButton, Qt::AltModifier, place(7, 0.25));
    settle();
    ASSERT_EQ(keyframes().size(), 4);
    EXPECT_EQ(keyframes()[1].speed, 0.25);
    drag(graph, place(2, 0.5), place(8, 0.15), Qt::ShiftModifier);
    EXPECT_EQ(points.ids().size(), 2);
    drag(graph, place(3, 0.25), place(4, 0.5));
    EXPECT_NEAR(keyframes()[2].time, 8, 0.03);
    EXPECT_EQ(keyframes()[1].speed, 0.5);
    EXPECT_NEAR(keyframes()[2].speed, 0.5, 1e-9);
    pane->perform(Command::deletePoints);
    EXPECT_EQ(keyframes().size(), 2);
}

TEST_F(Timeline, KeysMoveThePoints) {
    model->replaceKeyframes({point(0, 1), point(5, 1), point(10, 1)});
    points.select({keyframes()[1].id});
    settle();
    QTest::keyClick(pane->graph(), Qt::Key_Right, Qt::AltModifier);
    EXPECT_NEAR(keyframes()[1].time, 5 + 1.0 / 30, 1e-6);
    QTest::keyClick(pane->graph(), Qt::Key_Up, Qt::AltModifier | Qt::ShiftModifier);
    EXPECT_NEAR(keyframes()[1].speed, std::sqrt(2.0), 1e-9);
    EXPECT_FALSE(model->history().pendingUndoSnapshot());
    QTest::keyClick(pane->graph(), Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(points.single(), keyframes()[2].id);
    model->scrub(0.3);
    pane->perform(Command::copyPoints);
    pane->perform(Command::pastePoints);
    EXPECT_EQ(keyframes()[1].time, 3);
    settle();
    model->undo();
    settle();
    EXPECT_TRUE(points.ids().empty());
    model->redo();
    points.select({keyframes()[1].id});
    settle();
    EXPECT_EQ(QAccessible::queryAccessibleInterface(pane->graph())->text(QAccessible::Description),
              "Point 2 of 4, 3.000 seconds, 1x");
}

TEST_F(Timeline, KeysMoveAGroupByTheFrameOfItsFirstPlayedPoint) {
    model->replaceKeyframes({point(0, 1), point(1, 1), point(5, 1), point(6, 1), point(10, 1)});
    points.select({keyframes()[1].id, keyframes()[2].id, keyframes()[3].id});
    model->applyTrimRange(3, 10);
    settle();
    QTest::keyClick(pane->graph(), Qt::Key_Right, Qt::AltModifier);
    const auto timeOf = [](const SpeedKeyframes& all, double near) {
        for (const SpeedKeyframe& each : all)
            if (std::abs(each.time - near) < 0.2) return each.time;
        return -1.0;
    };
    EXPECT_NEAR(timeOf(keyframes(), 5), 5 + 1.0 / 30, 1e-6);
    EXPECT_NEAR(timeOf(keyframes(), 6), 6 + 1.0 / 30, 1e-6);
}

TEST_F(Timeline, AMarqueeKeepsWhatHasLeftTheView) {
    model->replaceKeyframes({point(0, 1), point(2, 0.5), point(7, 0.5), point(10, 1)});
    model->setTimelineZoom(2);
    model->setTimelineCenter(0);
    settle();
    QWidget* graph = pane->graph();
    const QPoint from(44 + 300, place(0, 1.5).y());
    QTest::mousePress(graph, Qt::LeftButton, Qt::ShiftModifier, from);
    model->setTimelineCenter(1);
    settle();
    const QPoint to(44 + 600, place(0, 0.2).y());
    QMouseEvent move(QEvent::MouseMove, to, graph->mapToGlobal(to), Qt::NoButton, Qt::LeftButton, Qt::ShiftModifier);
    QCoreApplication::sendEvent(graph, &move);
    EXPECT_EQ(points.ids(), (PointSelection::Ids{keyframes()[1].id, keyframes()[2].id}));
    QTest::mouseRelease(graph, Qt::LeftButton, Qt::ShiftModifier, to);
}

TEST_F(Timeline, NothingComesBetweenADragAndItsRelease) {
    model->replaceKeyframes({point(0, 1), point(6, 0.5), point(10, 1)});
    model->addZoomBlock({4, 6});
    settle();
    auto* lane = part<ZoomLaneView>();
    const QPoint inLane(44 + 500, lane->height() / 2);
    TrimHandle* handle = pane->findChildren<TrimHandle*>()[0];
    for (const auto& [widget, from] :
         std::vector<std::pair<QWidget*, QPoint>>{{pane->graph(), place(6, 0.5)}, {lane, inLane}, {handle, {5, 20}}})
        drag(widget, from, from + QPoint(50, 0), {}, [widget = widget, from = from] {
            QTest::mousePress(widget, Qt::RightButton, {}, from);
            QContextMenuEvent menu(QContextMenuEvent::Mouse, from, widget->mapToGlobal(from));
            QCoreApplication::sendEvent(widget, &menu);
            EXPECT_FALSE(QApplication::activePopupWidget());
        });
    EXPECT_FALSE(model->history().pendingUndoSnapshot());
}

TEST_F(Timeline, AnotherClipOrTheEndLetsGoOfWhatIsHeld) {
    TrimHandle* handle = pane->findChildren<TrimHandle*>()[0];
    auto* lane = part<ZoomLaneView>();
    const auto move = [](QWidget* widget, QPointF to) {
        QMouseEvent event(QEvent::MouseMove, to, widget->mapToGlobal(to), Qt::NoButton, Qt::LeftButton, {});
        QCoreApplication::sendEvent(widget, &event);
    };
    for (QWidget* widget : {static_cast<QWidget*>(handle), static_cast<QWidget*>(lane)}) {
        QTest::mousePress(widget, Qt::LeftButton, {}, {5, widget->height() / 2});
        if (widget == lane) move(lane, {344, 20});
        model->reset();
        settle();
        open();
        settle();
        move(widget, {205, 20});
        QTest::mouseRelease(widget, Qt::LeftButton, {}, {5, widget->height() / 2});
    }
    EXPECT_EQ(model->curve().trimRange().lower, 0);
    EXPECT_TRUE(model->zoom().zoomBlocks().empty());
    model->setTimelineZoom(2); // the axis is free again
    model->setTimelineCenter(1);
    settle();
    EXPECT_FALSE(handle->isVisible());

    model->setTimelineZoom(1);
    settle();
    QTest::mousePress(handle, Qt::LeftButton, {}, {5, 20});
    window.reset();
}

TEST_F(Timeline, TheHandlesTrimAndTheAxisWaits) {
    model->setTimelineZoom(2);
    settle();
    const auto handles = pane->findChildren<TrimHandle*>();
    ASSERT_EQ(handles.size(), 2);
    model->setTimelineCenter(0);
    settle();
    TrimHandle* start = handles[0];
    QTest::mousePress(start, Qt::LeftButton, {}, {5, 20});
    QMouseEvent move(QEvent::MouseMove, QPointF(205, 20), start->mapToGlobal(QPointF(205, 20)), Qt::NoButton,
                     Qt::LeftButton, {});
    QCoreApplication::sendEvent(start, &move);
    settle();
    EXPECT_NEAR(model->curve().trimRange().lower, 1, 0.02);
    EXPECT_NEAR(model->playheadSeconds(), model->curve().trimRange().lower, 1e-9);
    EXPECT_NEAR(start->x() + TrimHandle::widest, 244, 2); // on the magnified axis still
    QTest::mouseRelease(start, Qt::LeftButton, {}, {5, 20});
    EXPECT_EQ(model->timeline().timelineZoom(), 1);
}

TEST_F(Timeline, ZoomBlocksAreDrawnMovedAndResized) {
    auto* lane = part<ZoomLaneView>();
    const int y = lane->height() / 2;
    const auto at = [&](double seconds) { return QPoint(static_cast<int>(44 + seconds * 100), y); };
    drag(lane, at(1), at(1.2)); // too short
    EXPECT_TRUE(model->zoom().zoomBlocks().empty());
    drag(lane, at(1), at(3));
    ASSERT_EQ(model->zoom().zoomBlocks().size(), 1);
    drag(lane, at(2), at(4));
    EXPECT_NEAR(model->zoom().zoomBlocks()[0].startTime, 3, 0.02);
    drag(lane, at(5) - QPoint(3, 0), at(6) - QPoint(3, 0));
    EXPECT_NEAR(model->zoom().zoomBlocks()[0].endTime, 6, 0.02);
    model->undo();
    EXPECT_NEAR(model->zoom().zoomBlocks()[0].endTime, 5, 0.02);
}

TEST_F(Timeline, EscapeBringsBackWhatWasDragged) {
    model->replaceKeyframes({point(0, 1), point(3, 2), point(6, 0.5), point(10, 1)});
    model->addZoomBlock({4, 6});
    model->addZoomBlock({7, 8});
    model->undo();
    model->scrub(0.15);
    points.select({keyframes()[1].id});
    settle();
    const auto state = [&] {
        return std::tuple(model->currentSnapshot(), points.ids(), model->playheadSeconds(),
                          model->curve().trimRange().lower, model->zoom().selectedZoomBlockID(),
                          model->history().undoStack().size(), model->history().redoStack().size(),
                          model->history().pendingUndoSnapshot().has_value());
    };
    const auto before = state();
    auto* lane = part<ZoomLaneView>();
    const auto inLane = [&](double seconds) {
        return QPoint(static_cast<int>(44 + seconds * 100), lane->height() / 2);
    };
    const QImage still = lane->grab().toImage();
    struct Drag {
        const char* what;
        QWidget* widget;
        QPoint from;
        QPoint to;
        Qt::KeyboardModifiers modifiers;
    };
    QWidget* graph = pane->graph();
    for (const Drag& each : std::vector<Drag>{
             {"point", graph, place(6, 0.5), place(7, 1), {}},
             {"new point", graph, place(1, 1.4), place(1, 3), Qt::AltModifier},
             {"marquee", graph, place(5, 0.2), place(7, 1), Qt::ShiftModifier},
             {"scrub", graph, place(5, 0.11), place(7, 0.11), {}},
             {"ruler", part<Ruler>(), {444, 10}, {644, 10}, {}},
             {"trim", pane->findChildren<TrimHandle*>()[0], {5, 20}, {305, 20}, {}},
             {"move", lane, inLane(5), inLane(7), {}},
             {"resize", lane, inLane(6) - QPoint(3, 0), inLane(8), {}},
             {"draw", lane, inLane(1), inLane(3), {}},
         }) {
        bool isChanged = false;
        drag(each.widget, each.from, each.to, each.modifiers, [&] {
            isChanged = state() != before || lane->grab().toImage() != still;
            QTest::keyClick(graph, Qt::Key_Escape);
            settle();
        });
        EXPECT_TRUE(isChanged) << each.what;
        EXPECT_EQ(state(), before) << each.what;
    }
    PointSelection::Ids both{keyframes()[1].id, keyframes()[2].id};
    points.select(both);
    drag(graph, place(6, 0.5), place(7, 1), {}, [&] {
        EXPECT_NEAR(keyframes()[1].time, 4, 0.02);
        QTest::keyClick(graph, Qt::Key_Escape);
    });
    EXPECT_EQ(model->currentSnapshot(), std::get<0>(before));
    EXPECT_EQ(points.ids(), both);
}

TEST_F(Timeline, AnotherCurveIsShownFromTheMomentItIsChosen) {
    model->setEditorMode(CurveEditorMode::cropCenter);
    model->replaceCenterKeyframes({point(0, 0), point(5, 1), point(10, 0)});
    model->replaceKeyframes({point(0, 1), point(5, 1), point(10, 1)});
    settle();
    std::vector<double> heights;
    QObject::connect(part<CurveGraph>(), &CurveGraph::curveHeightChanged, [&](double y) { heights.push_back(y); });
    // What happens before the views have heard of the change: the window gets another size, and is drawn.
    model->setEditorMode(CurveEditorMode::speed);
    pane->resize(1088, 380);
    static_cast<void>(pane->grab());
    settle();
    ASSERT_FALSE(heights.empty());
    for (const double y : heights)
        EXPECT_TRUE(y >= -1 && y < 400) << y;

    // A drag goes no further than to the end of its curve's time.
    const SpeedKeyframes center = model->framing().centerKeyframes();
    QWidget* graph = pane->graph();
    pane->resize(1088, 434);
    settle();
    QTest::mousePress(graph, Qt::LeftButton, {}, place(5, 1));
    settle();
    model->setEditorMode(CurveEditorMode::cropCenter);
    const QPoint to = place(6, 2);
    QMouseEvent move(QEvent::MouseMove, to, graph->mapToGlobal(to), Qt::NoButton, Qt::LeftButton, {});
    QCoreApplication::sendEvent(graph, &move);
    QTest::mouseRelease(graph, Qt::LeftButton, {}, to);
    settle();
    EXPECT_EQ(model->framing().centerKeyframes(), center);
    EXPECT_FALSE(model->history().pendingUndoSnapshot());
}

TEST_F(Timeline, TheWheelZoomsAroundThePointer) {
    const QPointF at(344, 150);
    QWheelEvent wheel(at, pane->mapToGlobal(at), {}, {0, 480}, Qt::NoButton, Qt::ControlModifier, Qt::NoScrollPhase,
                      false);
    QCoreApplication::sendEvent(pane, &wheel);
    settle();
    const double zoom = model->timeline().timelineZoom();
    EXPECT_GT(zoom, 1.5);
    const TimeAxis axis = TimeAxis::of(10, 44, 1000, zoom, model->timeline().timelineCenter());
    EXPECT_NEAR(axis.timeAt(at.x()), 3, 1e-6);
}

TEST(TimelineLayout, GivesUpRowsInLowWindows) {
    const auto usual = TimelineLayout::of({936, 434}, 900);
    EXPECT_EQ(usual.plotHeight, 200);
    EXPECT_EQ(usual.hint.bottom() + 1, 434);
    EXPECT_EQ(TimelineLayout::lowestHeight(900), 354);
    EXPECT_EQ(TimelineLayout::lowestHeight(568), 284);
    EXPECT_FALSE(TimelineLayout::of({936, 300}, 590).showsFilm);
}

} // namespace
} // namespace flowtide
