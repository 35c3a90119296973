// A session on a clip that is slow all over, with scripted renders.
#pragma once

#include "tests/support/session_stage.h"

namespace flowtide::test {

class RenderAheadStage : public SessionStage {
protected:
    RenderAheadStage() {
        open();
        playAt(0.5);
    }
    /// One speed from end to end.
    void playAt(double speed) { model->replaceKeyframes({point(0, speed), point(10, speed)}); }
    /// Renders a range and lets it come to its end.
    void render(SourceRange range) {
        model->renderSelectedPreview(range);
        scheduler.settle();
    }
    const RenderAhead& ahead() const { return model->renders(); }
    bool isRendering() const { return ahead().render().isRendering(); }
    SourceRanges rendered() const {
        SourceRanges ranges;
        for (const RenderedPreview& preview : ahead().previews().renderedPreviews())
            ranges.push_back(preview.timeMap.sourceRange());
        return ranges;
    }
};

inline void expectRanges(const SourceRanges& ranges, const SourceRanges& expected, const std::string& what = {}) {
    ASSERT_EQ(ranges.size(), expected.size()) << what;
    for (std::size_t i = 0; i < ranges.size(); ++i) {
        EXPECT_NEAR(ranges[i].lower, expected[i].lower, 1e-6) << what;
        EXPECT_NEAR(ranges[i].upper, expected[i].upper, 1e-6) << what;
    }
}

} // namespace flowtide::test
