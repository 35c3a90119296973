// Rendering ahead on an edit session, with scripted renders.
#pragma once

#include "editor/edits/curve_edits.h"
#include "editor/edits/flow_edits.h"
#include "editor/edits/trim_edits.h"
#include "editor/edits/view_edits.h"
#include "editor/edits/zoom_edits.h"
#include "editor/preview/render_ahead.h"
#include "tests/support/session_stage.h"

namespace flowtide::test {

inline void expectRanges(const SourceRanges& ranges, const SourceRanges& expected, const std::string& what = {}) {
    ASSERT_EQ(ranges.size(), expected.size()) << what;
    for (std::size_t i = 0; i < ranges.size(); ++i) {
        EXPECT_NEAR(ranges[i].lower, expected[i].lower, 1e-6) << what;
        EXPECT_NEAR(ranges[i].upper, expected[i].upper, 1e-6) << what;
    }
}

class RenderAheadStage : public testing::Test, protected PreviewControl {
protected:
    RenderAheadStage() {
        openClip();
        playAt(0.5);
    }
    void openClip() {
        session.open(std::make_shared<const ImportedClip>(media->loadClip("clip.mov")));
        ahead.reset();
    }
    /// One speed from end to end, all of it slow below 1.
    void playAt(double speed) { edits.replaceKeyframes({{Uuid::random(), 0, speed}, {Uuid::random(), 10, speed}}); }
    void movePlayheadTo(double seconds) { session.timeline.setScrubPosition(seconds / 10); }
    /// Renders a range and lets it come to its end.
    void render(SourceRange range) {
        ahead.renderSelectedPreview(false, range);
        scheduler.settle();
    }
    SourceRanges renderedRanges() const {
        SourceRanges ranges;
        for (const RenderedPreview& preview : ahead.previews().renderedPreviews())
            ranges.push_back(preview.timeMap.sourceRange());
        return ranges;
    }

    // PreviewControl, as far as it is of rendering ahead
    void pausePlayback() override { ++pauses; }
    void beginPreviewOperation() override {}
    void cancelAutomaticRender() override { ahead.cancelAutomaticRender(); }
    void invalidateEditedPreviews() override { ahead.invalidateEditedPreviews(); }
    void scheduleSmartPreview() override { ahead.scheduleSmartPreview(); }
    void schedulePreviewRefreshAfterEdit() override {}
    void scrub(double position) override { session.timeline.setScrubPosition(position); }
    void resetPreview() override { ahead.reset(); }

    VirtualScheduler scheduler;
    ChangeNotifier notifier{scheduler};
    SessionJobs jobs{scheduler};
    EditSession session{notifier, {[this]() -> PreviewControl& { return *this; }, [] {}, [] { return 30.0; }}};
    CurveEdits edits{session};
    FlowEdits flow{session};
    std::shared_ptr<ScriptedSessionMedia> media = std::make_shared<ScriptedSessionMedia>();
    bool isBusy = false;
    int pauses = 0;
    int shown = 0;
    RenderAhead ahead{
        session, jobs, notifier, media, {[this] { ++pauses; }, [this] { return isBusy; }, [this] { ++shown; }}};
};

} // namespace flowtide::test
