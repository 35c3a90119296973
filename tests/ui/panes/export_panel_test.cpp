// The states of the export panel.
#include "tests/support/session_stage.h"
#include "ui/controls/buttons.h"
#include "ui/panes/export_panel.h"

namespace flowtide {
namespace {

using State = ExportPanel::State;

class ExportPanelTest : public test::SessionStage {
protected:
    ExportPanelTest() {
        open();
        panel = std::make_unique<ExportPanel>(
            *model, [this](Command command) { performed.push_back(command); }, &window);
    }
    QStringList texts() const {
        QStringList all;
        for (const QWidget* widget : panel->findChildren<QWidget*>())
            if (!widget->isHidden() && !widget->accessibleName().isEmpty()) all << widget->accessibleName();
        return all;
    }
    void click(const QString& text) {
        for (Button* button : panel->findChildren<Button*>())
            if (button->text() == text && !button->parentWidget()->isHidden()) return button->click();
        FAIL() << text.toStdString();
    }

    QWidget window;
    std::vector<Command> performed;
    std::unique_ptr<ExportPanel> panel;
};

TEST_F(ExportPanelTest, GoesThroughAnExport) {
    EXPECT_TRUE(panel->isHidden());
    std::vector<State> states;
    QStringList underWay;
    media->whileExporting = [&](const std::function<void(double)>& onProgress) {
        const auto look = [&] {
            scheduler.turn(); // the progress comes home
            scheduler.turn(); // and is told
            states.push_back(panel->state());
            underWay << texts();
        };
        look();
        for (const double share : {0.5, 1.0}) {
            onProgress(share);
            look();
        }
    };
    model->exportClip(folder / "out.mov");
    scheduler.settle();
    EXPECT_EQ(states, (std::vector{State::exporting, State::exporting, State::verifying}));
    EXPECT_TRUE(underWay.contains("0 of 300 frames")) << underWay.join(u'|').toStdString();
    EXPECT_TRUE(underWay.contains("Verifying export…"));
    EXPECT_EQ(panel->state(), State::verified);
    EXPECT_FALSE(panel->isHidden());
    for (const char* text : {"Last export verified", "out.mov", "summary", "details"})
        EXPECT_TRUE(texts().contains(text)) << text;
    EXPECT_TRUE(panel->dismiss());
    scheduler.settle();
    EXPECT_TRUE(panel->isHidden());
    EXPECT_FALSE(panel->dismiss());
    EXPECT_TRUE(model->exporting().lastExportVerification()); // which the inspector goes on to show
}

TEST_F(ExportPanelTest, SaysWhyAnExportEnded) {
    media->failure = "The disk is full.";
    model->exportClip(folder / "out.mov");
    scheduler.settle();
    EXPECT_EQ(panel->state(), State::failed);
    EXPECT_TRUE(texts().join(u'|').contains("The disk is full."));
    EXPECT_FALSE(model->alert().showError());
    click("Export again…");
    EXPECT_EQ(performed, std::vector{Command::exportClip});

    media->failure.reset();
    model->exportClip(folder / "out.mov");
    scheduler.turn();
    model->cancelExport();
    scheduler.settle();
    EXPECT_EQ(panel->state(), State::cancelled);
    EXPECT_TRUE(texts().contains("Export was cancelled."));

    // Not of another clip.
    model->reset();
    open();
    performed.clear();
    click("Export again…");
    EXPECT_TRUE(performed.empty());
    panel->askAboutCodec([] {});
    model->reset();
    scheduler.settle();
    EXPECT_TRUE(panel->isHidden());
}

TEST_F(ExportPanelTest, AsksBeforeAnotherCodecIsUsed) {
    int accepted = 0;
    panel->askAboutCodec([&] { ++accepted; });
    EXPECT_TRUE(texts().contains("Source video codec cannot be matched"));
    EXPECT_TRUE(texts().join(u'|').contains("is not supported for source-matched export. Loftwell Video can try"));
    EXPECT_TRUE(panel->dismiss());
    EXPECT_EQ(accepted, 0);
    panel->askAboutCodec([&] { ++accepted; });
    click("Try HEVC / H.265");
    EXPECT_EQ(accepted, 1);
    EXPECT_TRUE(panel->isHidden());
}

} // namespace
} // namespace flowtide
