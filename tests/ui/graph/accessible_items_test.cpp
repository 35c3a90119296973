// What is painted, as the accessibility tree and the keyboard reach it.
#include "tests/ui/graph/timeline_stage.h"
#include "ui/accessible_items.h"
#include "ui/graph/coverage_bar.h"
#include "ui/graph/flow_lane.h"
#include "ui/graph/item_steps.h"
#include "ui/graph/zoom_lane_view.h"

#include <gmock/gmock.h>

#include <QAccessible>
#include <array>
#include <string>
#include <utility>
#include <vector>

namespace flowtide {
namespace {

using testing::Contains;
using testing::IsEmpty;
using testing::Pair;

std::vector<std::pair<QAccessible::Event, std::string>> told;

void record(QAccessibleEvent* event) {
    const QAccessibleInterface* of = event->accessibleInterface();
    told.emplace_back(event->type(), of ? of->text(QAccessible::Name).toStdString() : "");
}

class AccessibleItemsTest : public test::TimelineStage {
protected:
    void SetUp() override {
        TimelineStage::SetUp();
        told.clear();
        QAccessible::setActive(true);
        AccessibleItems::of(*pane->graph())->onEvent = record;
    }
    void TearDown() override {
        QAccessible::setActive(false);
        TimelineStage::TearDown();
    }
    static QAccessibleInterface& tree(QWidget* widget) { return *QAccessible::queryAccessibleInterface(widget); }
    static std::string name(const QAccessibleInterface* item) {
        return item ? item->text(QAccessible::Name).toStdString() : "none";
    }
};

TEST_F(AccessibleItemsTest, PointsAreChildrenOfTheGraph) {
    model->replaceKeyframes({point(0, 1), point(5, 2), point(10, 1)});
    settle();
    QAccessibleInterface& graph = tree(pane->graph());
    ASSERT_EQ(graph.childCount(), 3);
    EXPECT_EQ(graph.text(QAccessible::Description), "3 points");
    QAccessibleInterface* middle = graph.child(1);
    EXPECT_EQ(name(middle), "Point 2 of 3, 5.000 seconds, 2x");
    EXPECT_EQ(graph.indexOfChild(middle), 1);
    EXPECT_EQ(middle->parent(), &graph);
    const QPoint at = pane->graph()->mapToGlobal(place(5, 2));
    EXPECT_LE((middle->rect().center() - at).manhattanLength(), 2);
    EXPECT_EQ(graph.childAt(at.x(), at.y()), middle);

    middle->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(points.single(), keyframes()[1].id);
    EXPECT_TRUE(middle->state().selected);
    EXPECT_THAT(told, Contains(Pair(QAccessible::Selection, name(middle))));
    const std::size_t steps = model->history().undoStack().size();
    middle->valueInterface()->setCurrentValue(0.5);
    settle();
    EXPECT_EQ(keyframes()[1].speed, 0.5);
    EXPECT_EQ(model->history().undoStack().size(), steps + 1);
    EXPECT_THAT(told, Contains(Pair(QAccessible::ValueChanged, "Point 2 of 3, 5.000 seconds, 0.5x")));

    SpeedKeyframes more = keyframes();
    more.insert(more.begin() + 1, point(2, 4));
    model->replaceKeyframes(more);
    settle();
    EXPECT_EQ(name(middle), "Point 3 of 4, 5.000 seconds, 0.5x"); // still the same one
    EXPECT_THAT(told, Contains(Pair(QAccessible::ObjectCreated, "Point 2 of 4, 2.000 seconds, 4x")));
    pane->perform(Command::deletePoints);
    settle();
    EXPECT_THAT(told, Contains(Pair(QAccessible::ObjectDestroyed, testing::_)));
    EXPECT_EQ(graph.childCount(), 3);
    model->setEditorMode(CurveEditorMode::cropCenter);
    settle();
    EXPECT_EQ(name(&graph), "Framing curve");
    EXPECT_EQ(name(graph.child(0)), "Point 1 of 2, 0.000 seconds, Center");
    model->setEditorMode(CurveEditorMode::speed);
    model->replaceKeyframes({point(0, 1), point(5, 1), point(10, 1)});
    model->applyTrimRange(2, 8); // points are counted as the inspector does
    settle();
    ASSERT_EQ(graph.childCount(), 3);
    EXPECT_EQ(name(graph.child(0)), "Trim start, 2.000 seconds, 1x");
    EXPECT_EQ(name(graph.child(1)), "Point 1 of 1, 5.000 seconds, 1x");
    EXPECT_EQ(name(graph.child(2)), "Trim end, 8.000 seconds, 1x");
}

TEST_F(AccessibleItemsTest, NobodyIsToldWhereNobodyListens) {
    QAccessible::setActive(false);
    SpeedKeyframes many;
    for (int i = 0; i < 900; ++i)
        many.push_back(point(i / 90.0, 1 + i % 3));
    model->replaceKeyframes(many);
    settle();
    told.clear();
    points.select({keyframes()[7].id});
    settle();
    EXPECT_THAT(told, IsEmpty());
    QAccessibleInterface& graph = tree(pane->graph());
    EXPECT_EQ(graph.childCount(), static_cast<int>(keyframes().size()));
    EXPECT_EQ(name(graph.child(899)).substr(0, 12), "Point 900 of");
}

TEST_F(AccessibleItemsTest, KeysWalkTheLanes) {
    window->activateWindow();
    model->replaceKeyframes({point(0, 1), point(1, 1), point(2, 0.1), point(3, 0.1), point(4, 1), point(6, 1),
                             point(7, 0.1), point(8, 1), point(10, 1)});
    model->addZoomBlock({1, 2});
    model->addZoomBlock({5, 7});
    model->scrub(0.45);
    settle();
    auto* zoom = part<ZoomLaneView>();
    QAccessibleInterface& blocks = tree(zoom);
    EXPECT_EQ(name(blocks.child(1)), "Zoom block 5.00–7.00 seconds, 1.2x");
    QTest::keyClick(zoom, Qt::Key_Up, Qt::ShiftModifier);
    settle();
    EXPECT_EQ(blocks.text(QAccessible::Description), "Zoom block 1.00–2.00 seconds, 1.2x");
    blocks.child(0)->valueInterface()->setCurrentValue(99);
    EXPECT_EQ(model->zoom().zoomBlocks()[0].amount, highestZoomAmount);

    auto* flow = part<FlowLane>();
    QAccessibleInterface& ranges = tree(flow);
    ASSERT_EQ(model->flow().opticalFlowRanges().size(), 2);
    EXPECT_EQ(ranges.childCount(), 3); // and the button
    QTest::keyClick(flow, Qt::Key_Down, Qt::ShiftModifier);
    settle();
    EXPECT_EQ(model->flow().selectedOpticalFlowRangeID(), model->flow().opticalFlowRanges()[1].id);
    EXPECT_TRUE(ranges.child(1)->state().selected);
    EXPECT_THAT(name(ranges.child(1)), testing::EndsWith("not rendered"));
    QTest::keyClick(flow, Qt::Key_Return);
    EXPECT_TRUE(model->renders().render().isRendering());
    scheduler.settle();
    rest();
    EXPECT_THAT(name(ranges.child(1)), testing::EndsWith(" rendered"));

    SubjectTrackResult track;
    for (int frame = 60; frame < 120; ++frame)
        track.samples.push_back({frame / 30.0, 0.45});
    track.lostAfterSeed = true;
    model->setEditorMode(CurveEditorMode::cropCenter);
    model->applySubjectTrackingResult(track);
    settle();
    auto* coverage = part<CoverageBar>();
    QAccessibleInterface& flags = tree(coverage);
    ASSERT_EQ(flags.childCount(), 1);
    QTest::keyClick(coverage, Qt::Key_Return);
    EXPECT_NEAR(model->playheadSeconds(), 4.5, 1e-9); // none is current yet
    QTest::keyClick(coverage, Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_TRUE(flags.child(0)->state().selected);
    QTest::keyClick(coverage, Qt::Key_Return);
    EXPECT_NEAR(model->playheadSeconds(), 119 / 30.0, 0.01);
}

TEST(ItemSteps, BeginAtThePlayheadAndStayAtTheEnds) {
    const std::array times{1.0, 2.0, 3.0};
    EXPECT_EQ(steppedItem(times, {}, 2, 1), 1);
    EXPECT_EQ(steppedItem(times, {}, 2, -1), 1);
    EXPECT_EQ(steppedItem(times, {}, 2.5, 1), 2);
    EXPECT_EQ(steppedItem(times, {}, 0, -1), 0);
    EXPECT_EQ(steppedItem(times, {}, 9, 1), 2);
    EXPECT_EQ(steppedItem(times, 2, 0, 1), 2);
    EXPECT_EQ(steppedItem(times, 2, 0, -1), 1);
    EXPECT_FALSE(steppedItem({}, {}, 0, 1));
}

} // namespace
} // namespace flowtide
