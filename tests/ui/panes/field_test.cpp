// A field accepts, refuses and restores; settings survive a restart.
#include "core/speed_keyframe.h"
#include "tests/support/temporary_folder.h"
#include "ui/controls/drag_guard.h"
#include "ui/controls/slider.h"
#include "ui/panes/field_pair.h"
#include "ui/panes/value_formats.h"
#include "ui/user_settings.h"
#include "ui/value_text.h"

#include <gtest/gtest.h>

#include <QTest>

namespace flowtide {
namespace {

class FieldTest : public testing::Test {
protected:
    FieldTest() {
        field.onValue = [this](double value) -> std::optional<QString> {
            if (value > highestSpeed) return QStringLiteral("Too fast.");
            wanted = value;
            return {};
        };
        field.onRefused = [this](const std::optional<QString>& refusal) { sentence = refusal.value_or(QString()); };
        field.showValue(0.15);
        field.selectAll();
    }
    void type(const QString& text) {
        field.selectAll();
        QTest::keyClicks(&field, text);
    }

    Field field{QStringLiteral("Speed"), valueFormats::speed()};
    std::optional<double> wanted;
    QString sentence;
};

TEST_F(FieldTest, AppliesWhatIsTypedWithOrWithoutItsUnit) {
    EXPECT_EQ(field.text(), "0.15x");
    for (const auto& [typed, value] : {std::pair{"0.5", 0.5}, {"2x", 2.0}, {"25%", 0.25}}) {
        type(typed);
        QTest::keyClick(&field, Qt::Key_Return);
        EXPECT_EQ(wanted, value);
    }
    EXPECT_EQ(field.text(), "0.25x");
    QTest::keyClick(&field, Qt::Key_Up, Qt::ShiftModifier);
    EXPECT_NEAR(*wanted, 0.35, 1e-9);
}

TEST_F(FieldTest, RefusesWithASentenceAndRestores) {
    type("400");
    QTest::keyClick(&field, Qt::Key_Return);
    EXPECT_EQ(sentence, "Too fast.");
    EXPECT_EQ(field.text(), "400");
    EXPECT_FALSE(wanted);
    QTest::keyClicks(&field, "x"); // goes on typing
    EXPECT_EQ(sentence, "");
    QTest::keyClick(&field, Qt::Key_Escape);
    EXPECT_EQ(field.text(), "0.15x");
    type("fast");
    QTest::keyClick(&field, Qt::Key_Return);
    EXPECT_EQ(sentence, "Type a speed, as 0.25x or 25%.");
}

TEST(DragGuardTest, KeepsKeysUntilNoButtonIsHeldAnyMore) {
    QLineEdit typed;
    DragGuard guard([] {});
    guard.begin();
    QTest::keyClick(&typed, Qt::Key_A);
    EXPECT_EQ(typed.text(), "");
    for (const Qt::MouseButton held : {Qt::LeftButton, Qt::NoButton}) {
        QMouseEvent move(QEvent::MouseMove, QPointF(1, 1), QPointF(1, 1), Qt::NoButton, held, {});
        QCoreApplication::sendEvent(&typed, &move);
        QTest::keyClick(&typed, Qt::Key_A);
        EXPECT_EQ(typed.text(), held ? "" : "a");
    }
}

TEST(ValueSliderTest, AGrabbedThumbStaysUntilItIsMoved) {
    ValueSlider slider(QStringLiteral("Smoothing"), Qt::white, 0, 100, 50);
    slider.resize(214, 20); // two pixels for each value
    slider.showValue(80);
    const auto press = [&](int x) { QTest::mousePress(&slider, Qt::LeftButton, {}, {x, 10}); };
    const auto release = [&](int x) { QTest::mouseRelease(&slider, Qt::LeftButton, {}, {x, 10}); };
    press(172);
    EXPECT_EQ(slider.value(), 80);
    QMouseEvent move(QEvent::MouseMove, QPointF(152, 10), slider.mapToGlobal(QPointF(152, 10)), Qt::NoButton,
                     Qt::LeftButton, {});
    QCoreApplication::sendEvent(&slider, &move);
    EXPECT_EQ(slider.value(), 70);
    release(152);
    press(27);
    EXPECT_EQ(slider.value(), 10);
    release(27);
}

TEST(UserSettingsTest, LayoutSurvivesARestart) {
    const test::TemporaryFolder folder;
    const QString file = valueText::path(folder / "settings.ini");
    {
        UserSettings settings(file);
        EXPECT_TRUE(settings.sidebarVisible());
        EXPECT_EQ(settings.previewSplitRatio(), UserSettings::defaultSplitRatio);
        settings.setSidebarVisible(false);
        settings.setInspectorVisible(false);
        settings.setPreviewSplitRatio(0.6);
    }
    const std::string stored = test::readFile(folder / "settings.ini");
    for (const char* key : {"workspace.previewSplitRatio", "workspace.sidebarVisible", "workspace.inspectorVisible"})
        EXPECT_NE(stored.find(key), std::string::npos) << stored;
    UserSettings settings(file);
    EXPECT_FALSE(settings.sidebarVisible());
    EXPECT_FALSE(settings.inspectorVisible());
    EXPECT_EQ(settings.previewSplitRatio(), 0.6);
    settings.setPreviewSplitRatio(7);
    EXPECT_EQ(settings.previewSplitRatio(), UserSettings::highestSplitRatio);
}

} // namespace
} // namespace flowtide
