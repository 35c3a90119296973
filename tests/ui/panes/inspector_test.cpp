// The inspector says what the session holds, and changes it.
#include "tests/support/session_stage.h"
#include "ui/controls/buttons.h"
#include "ui/controls/field.h"
#include "ui/controls/slider.h"
#include "ui/panes/flow_range_row.h"
#include "ui/panes/inspector.h"
#include "ui/panes/inspector_section.h"
#include "ui/value_text.h"

#include <QTest>

namespace flowtide {
namespace {

class InspectorTest : public test::SessionStage {
protected:
    InspectorTest()
        : settings(valueText::path(folder / "settings.ini")) {}

    void show() {
        open();
        inspector = std::make_unique<Inspector>(InspectorSession{*model, points, settings});
    }
    /// The widget with an accessible name that is not hidden by its parents; null when there is none.
    template <typename Widget>
    Widget* find(const QString& name) const {
        for (Widget* widget : inspector->findChildren<Widget*>()) {
            if (!widget->accessibleName().startsWith(name)) continue;
            bool isHidden = false;
            for (const QWidget* at = widget; at != inspector.get() && !isHidden; at = at->parentWidget())
                isHidden = at->isHidden() && !qobject_cast<QStackedWidget*>(at->parentWidget());
            if (!isHidden) return widget;
        }
        return nullptr;
    }
    template <typename Button>
    Button* button(const QString& text) const {
        for (Button* widget : inspector->findChildren<Button*>())
            if (widget->text() == text) return widget;
        return nullptr;
    }

    UserSettings settings;
    PointSelection points;
    std::unique_ptr<Inspector> inspector;
};

TEST_F(InspectorTest, FollowsTheCurve) {
    show();
    EXPECT_TRUE(find<ValueRow>("Output duration: 00:10.000"));
    model->replaceKeyframes({point(0, 2), point(10, 2)});
    scheduler.settle();
    EXPECT_TRUE(find<ValueRow>("Output duration: 00:05.000"));
    EXPECT_TRUE(find<ValueRow>("Source range: 00:10.000"));

    // A drag of the slider is one step back.
    const std::size_t steps = model->history().undoStack().size();
    auto* smoothing = find<ValueSlider>("Smoothing");
    ASSERT_TRUE(smoothing);
    smoothing->resize(200, 20);
    QTest::mousePress(smoothing, Qt::LeftButton, {}, {20, 10});
    QTest::mouseMove(smoothing, {60, 10});
    QTest::mouseMove(smoothing, {193, 10});
    QTest::mouseRelease(smoothing, Qt::LeftButton, {}, {193, 10});
    EXPECT_EQ(model->curve().smoothing(), 1);
    EXPECT_EQ(model->history().undoStack().size(), steps + 1);
}

TEST_F(InspectorTest, EditsTheSelectedPoint) {
    show();
    model->replaceKeyframes({point(0, 1), point(4, 2), point(10, 1)});
    scheduler.settle();
    auto* speed = find<Field>("Speed");
    EXPECT_FALSE(speed); // nothing is selected
    points.select({model->curve().keyframes()[1].id});
    speed = find<Field>("Speed");
    auto* time = find<Field>("Time");
    ASSERT_TRUE(speed && time);
    EXPECT_TRUE(find<LineLabel>("2 of 3"));
    EXPECT_EQ(speed->text(), "2x");
    EXPECT_EQ(time->text(), "00:04.000");
    const auto type = [](Field* field, const char* text) {
        field->selectAll();
        QTest::keyClicks(field, text);
        QTest::keyClick(field, Qt::Key_Return);
    };
    type(speed, "0.5");
    type(time, "5");
    EXPECT_EQ(model->curve().keyframes()[1].speed, 0.5);
    EXPECT_EQ(model->curve().keyframes()[1].time, 5);
    type(time, "10");
    EXPECT_TRUE(find<LineLabel>("Another point is there."));
    type(speed, "200");
    EXPECT_TRUE(find<LineLabel>("Speeds run from 0.01x to 100x."));
    EXPECT_EQ(model->curve().keyframes()[1].speed, 0.5);
    find<IconButton>("Delete selected points")->click();
    EXPECT_EQ(model->curve().keyframes().size(), 2U);
}

TEST_F(InspectorTest, ListsTheRangesAndWhatIsRendered) {
    show();
    EXPECT_TRUE(find<Paragraph>("The curve never runs slow enough to need new frames."));
    model->replaceKeyframes(slowBetween(2, 3));
    scheduler.settle();
    const auto states = [this] { return flowRangeStates(*model); };
    ASSERT_EQ(states().size(), 1U);
    const Uuid id = states()[0].range.id;
    ASSERT_TRUE(find<FlowRangeRow>(""));
    EXPECT_TRUE(find<FlowRangeRow>("")->accessibleName().endsWith("s, Preview not rendered"));
    auto* all = button<Button>("Render all ranges");
    ASSERT_TRUE(all && all->isEnabled());
    all->click();
    scheduler.turn();
    EXPECT_TRUE(button<Button>("Stop"));
    scheduler.settle();
    EXPECT_EQ(states()[0].kind, FlowRangeState::Kind::rendered);
    EXPECT_FALSE(all->isEnabled());
    EXPECT_EQ(all->text(), "All ranges rendered");
    button<Button>("Clear")->click();
    scheduler.settle();
    EXPECT_EQ(states()[0].kind, FlowRangeState::Kind::notRendered);

    find<FlowRangeRow>("")->click();
    EXPECT_EQ(model->flow().selectedOpticalFlowRangeID(), id);
    find<Switch>("Optical Flow")->click();
    scheduler.settle();
    EXPECT_EQ(states()[0].kind, FlowRangeState::Kind::switchedOff);
    model->setOpticalFlow(true, id);
    model->setFrameInterpolation(FrameInterpolation::nearest);
    scheduler.settle();
    EXPECT_EQ(states()[0].kind, FlowRangeState::Kind::switchedOff);
    EXPECT_FALSE(states()[0].canSwitch);
    EXPECT_FALSE(all->isEnabled());
}

TEST_F(InspectorTest, ShowsTheCropAndTheSelectedZoomBlock) {
    show();
    inspector->setTab(WorkspaceInspectorTab::framing);
    EXPECT_TRUE(find<ValueRow>("Output size: 1920 × 1080"));
    find<Switch>("Social crop")->click();
    scheduler.settle();
    EXPECT_TRUE(model->framing().isVerticalCropEnabled());
    EXPECT_TRUE(find<ValueRow>("Output size: 606 × 1080"));
    EXPECT_TRUE(find<Paragraph>("No zoom block selected."));
    button<Button>("Add zoom at playhead")->click();
    scheduler.settle();
    EXPECT_TRUE(find<LineLabel>("1 of 1"));
    auto* amount = find<ValueSlider>("Amount");
    ASSERT_TRUE(amount);
    QTest::keyClick(amount, Qt::Key_Right);
    EXPECT_NEAR(model->zoom().zoomBlocks()[0].amount, 1.3, 1e-9);
    find<IconButton>("Delete this zoom block")->click();
    EXPECT_TRUE(model->zoom().zoomBlocks().empty());

    // The tab goes with the curve that the graph edits.
    model->setEditorMode(CurveEditorMode::cropCenter);
    model->setEditorMode(CurveEditorMode::speed);
    scheduler.settle();
    model->setEditorMode(CurveEditorMode::cropCenter);
    scheduler.settle();
    EXPECT_EQ(inspector->tab(), WorkspaceInspectorTab::framing);
    inspector->setTab(WorkspaceInspectorTab::clip);
    model->setEditorMode(CurveEditorMode::speed);
    scheduler.settle();
    EXPECT_EQ(inspector->tab(), WorkspaceInspectorTab::clip);
}

} // namespace
} // namespace flowtide
