// What the progress bar draws, and how often.
#include "cli/progress_bar.h"

#include <gtest/gtest.h>

namespace flowtide {
namespace {

using namespace std::chrono_literals;

TEST(ProgressBar, DrawsRarelyFitsTheTerminalAndClearsItself) {
    std::chrono::steady_clock::time_point now;
    std::vector<std::string> drawn;
    {
        ProgressBar bar(
            600, 60, [&](const std::string& text) { drawn.push_back(text); }, [&] { return now; });
        bar.update(0);
        now += 50ms;
        bar.update(0.1); // too soon to draw again
        now += 9950ms;
        bar.update(0.25);
        bar.update(1);
        now += 1s;
        bar.update(1);
    }
    ASSERT_EQ(drawn.size(), 4U);
    EXPECT_EQ(drawn[0].find("left"), std::string::npos); // no forecast from nothing
    EXPECT_NE(drawn[1].find(" 25 %  15.0 fps  0:30 left"), std::string::npos) << drawn[1];
    EXPECT_EQ(drawn[2], "\r\033[KVerifying export…");
    EXPECT_EQ(drawn[3], "\r\033[K");
}

TEST(ProgressBar, NarrowTerminalsGetTheFiguresAlone) {
    std::string drawn;
    std::chrono::steady_clock::time_point now;
    ProgressBar bar(
        600, 12, [&](const std::string& text) { drawn = text; }, [&] { return now; });
    now += 100s;
    bar.update(0.5);
    EXPECT_EQ(drawn, "\r\033[K 50 %  3.0 ");
}

} // namespace
} // namespace flowtide
