// How far a render is, and which failure it keeps.
#include "media/export/render_state.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace flowtide::test {
namespace {

TEST(RenderState, SoundIsATwentiethOfTheProgress) {
    const struct {
        std::int64_t frames;
        double sound;
        double progress;
        double silent;
    } cases[] = {
        {0, 0, 0, 0},         {20, 0, 0.475, 0.5}, {0, 1, 0.05, 0}, {30, 0.5, 0.7375, 0.75}, {40, 0.98, 0.9895, 0.99},
        {40, 1, 0.9905, 0.99}};
    for (const auto& [frames, sound, progress, silent] : cases) {
        RenderState state;
        state.setFramesWritten(frames, 40);
        state.setAudioFraction(sound);
        EXPECT_DOUBLE_EQ(state.progress(true), progress) << frames;
        EXPECT_DOUBLE_EQ(state.progress(false), silent) << frames;
        EXPECT_EQ(state.framesWritten(), frames);
        state.setVideoFinished();
        EXPECT_EQ(state.progress(false), 1);
    }
}

TEST(RenderState, TheFirstFailureIsTheOneThatCounts) {
    RenderState state;
    EXPECT_NO_THROW(state.rethrowError());
    EXPECT_FALSE(state.hasError());
    state.recordError(std::make_exception_ptr(std::out_of_range("first")));
    state.recordError(std::make_exception_ptr(std::length_error("second")));
    EXPECT_TRUE(state.hasError());
    EXPECT_THROW(state.rethrowError(), std::out_of_range);
}

} // namespace
} // namespace flowtide::test
