// Sound through SDL, without a device: into a file, which SDL can write to, and to the driver that is none.
#include "media/sdl/sdl_audio_output.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <condition_variable>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <span>
#include <string>
#include <vector>

namespace flowtide::test {
namespace {

class Environment {
public:
    Environment(const char* name, const std::string& value)
        : name_(name) {
        ::setenv(name, value.c_str(), 1);
    }
    ~Environment() { ::unsetenv(name_); }
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;

private:
    const char* name_;
};

TEST(SdlAudioOutput, TheDummyDriverIsNoDevice) {
    const Environment driver("SDL_AUDIODRIVER", "dummy");
    const SteadyClock clock;
    EXPECT_FALSE(openSdlAudio(
        {48'000, 2}, [](std::span<float>) {}, clock));
}

TEST(SdlAudioOutput, PlaysWhatItPullsAndStopsPulling) {
    const TemporaryFolder folder;
    const Environment driver("SDL_AUDIODRIVER", "disk");
    const Environment file("SDL_DISKAUDIOFILE", (folder / "sound.raw").string());
    const Environment delay("SDL_DISKAUDIODELAY", "1");
    const SteadyClock clock;
    std::mutex lock; // guards pulled
    std::condition_variable more;
    std::int64_t pulled = 0;
    const auto pull = [&](std::span<float> sound) {
        const std::scoped_lock guard(lock);
        for (float& sample : sound)
            sample = static_cast<float>(pulled++);
        more.notify_one();
    };
    auto output = openSdlAudio({48'000, 2}, pull, clock);
    ASSERT_TRUE(output);
    EXPECT_EQ(output->heardFrames(), 0);
    EXPECT_EQ(pulled, 0) << "paused";
    output->start();
    {
        std::unique_lock guard(lock);
        more.wait(guard, [&] { return pulled >= 40'000; });
    }
    output->pause();
    const double heard = output->heardFrames();
    {
        const std::scoped_lock guard(lock);
        EXPECT_GT(heard, 0);
        EXPECT_LE(2 * heard, static_cast<double>(pulled));
    }
    EXPECT_GE(output->heardFrames(), heard);

    // Paused, the device goes on to write silence, which may be faster than it is read.
    output.reset();
    const std::string bytes = readFile(folder / "sound.raw");
    std::vector<float> written(bytes.size() / sizeof(float));
    std::memcpy(written.data(), bytes.data(), written.size() * sizeof(float));
    // The device begins with silence of its own.
    const auto first = std::ranges::find(written, 1.0F);
    ASSERT_NE(first, written.end());
    std::int64_t expected = 1;
    for (auto it = first; it != written.end() && *it != 0; ++it)
        ASSERT_EQ(*it, static_cast<float>(expected++));
    EXPECT_GT(expected, 30'000);
}

} // namespace
} // namespace flowtide::test
