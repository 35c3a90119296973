// What devices have played: the clock behind a device, and the device that nobody hears.
#include "media/player/device_clock.h"
#include "media/player/null_audio_output.h"
#include "tests/support/virtual_clock.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <span>

namespace flowtide::test {
namespace {

TEST(AudioOutput, ADeviceIsHeardBetweenItsRequestsAndNeverBeyondThem) {
    DeviceClock device(1000, 0.02);
    EXPECT_EQ(device.heard(0), 0);
    device.requested(100, 1);
    EXPECT_EQ(device.heard(1.01), 0) << "still in the device";
    EXPECT_NEAR(device.heard(1.05), 30, 1e-9);
    device.requested(100, 1.098); // a little early
    EXPECT_NEAR(device.heard(1.098), 80, 1e-9);
    EXPECT_NEAR(device.heard(1.148), 130, 1e-9);
    EXPECT_NEAR(device.heard(9), 180, 1e-9) << "a device that stalls";
    device.requested(100, 9.1);
    EXPECT_NEAR(device.heard(9.1), 180, 1e-9);
    EXPECT_NEAR(device.heard(9.06), 180, 1e-9) << "never falls";
    device.pause(9.15);
    EXPECT_NEAR(device.heard(9.18), 230, 1e-9);
    device.requested(100, 20);
    EXPECT_NEAR(device.heard(20.01), 290, 1e-9);
}

TEST(AudioOutput, TheNullDeviceConsumesByTheClock) {
    VirtualClock clock;
    std::int64_t pulled = 0;
    const auto pull = [&](std::span<float> sound) { pulled += static_cast<std::int64_t>(sound.size()) / 2; };
    NullAudioOutput output({48'000, 2}, pull, clock, 0.25);
    clock.advance(1);
    EXPECT_EQ(output.heardFrames(), 0);
    EXPECT_EQ(pulled, 0) << "paused";
    output.start();
    clock.advance(1);
    EXPECT_NEAR(output.heardFrames(), 36'000, 1e-6);
    EXPECT_NEAR(static_cast<double>(pulled), 48'000, 1);
    output.start(); // again: changes nothing
    clock.advance(0.5);
    output.pause();
    clock.advance(5);
    EXPECT_NEAR(output.heardFrames(), 60'000, 1e-6);
    output.start();
    clock.advance(0.5);
    EXPECT_NEAR(output.heardFrames(), 84'000, 1e-6);
    EXPECT_NEAR(static_cast<double>(pulled), 96'000, 1);
}

} // namespace
} // namespace flowtide::test
