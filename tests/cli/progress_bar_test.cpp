// What the progress bar draws, and how often.
#include "cli/progress_bar.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace flowtide {
namespace {

using namespace std::chrono_literals;

class ProgressBarTest : public testing::Test {
protected:
    ProgressBar makeBar() {
        return {600, [this] { return columns_; }, [this](const std::string& text) { drawn_.push_back(text); },
                [this] { return now_; }};
    }

    int columns_ = 60;
    std::chrono::steady_clock::time_point now_;
    std::vector<std::string> drawn_;
};

TEST_F(ProgressBarTest, DrawsRarelyAndClearsItself) {
    {
        ProgressBar bar = makeBar();
        bar.update(0);
        now_ += 50ms;
        bar.update(0.1); // too soon to draw again
        now_ += 9950ms;
        bar.update(0.25);
        bar.update(1); // the last step is never too soon
        now_ += 1s;
        bar.update(1);
    }
    ASSERT_EQ(drawn_.size(), 4U);
    EXPECT_EQ(drawn_[0].find("left"), std::string::npos); // no forecast from nothing
    EXPECT_NE(drawn_[1].find(" 25 %  15.0 fps  0:30 left"), std::string::npos) << drawn_[1];
    EXPECT_EQ(drawn_[2], "\r\033[KVerifying export…");
    EXPECT_EQ(drawn_[3], "\r\033[K");
}

TEST_F(ProgressBarTest, ForecastsInHours) {
    ProgressBar bar = makeBar();
    for (const auto& [elapsed, left] : {std::pair{3599s, "59:59 left"},
                                        {3600s, " 1:00:00 left"},
                                        {7261s, " 2:01:01 left"},
                                        {9'000'000s, " 99:59:59 left"}}) {
        now_ = std::chrono::steady_clock::time_point() + elapsed;
        bar.update(0.5);
        EXPECT_NE(drawn_.back().find(left), std::string::npos) << drawn_.back();
    }
}

TEST_F(ProgressBarTest, NothingDrawnNothingCleared) {
    { ProgressBar bar = makeBar(); }
    EXPECT_TRUE(drawn_.empty());
}

TEST_F(ProgressBarTest, FollowsTheTerminalsWidth) {
    ProgressBar bar = makeBar();
    for (columns_ = 0; columns_ < 100; ++columns_) {
        now_ += 10s;
        bar.update(0.5);
        const std::string line = drawn_.back().substr(4);
        const auto shownColumns =
            std::count_if(line.begin(), line.end(), [](char c) { return (c & '\xC0') != '\x80'; }); // UTF-8 characters
        EXPECT_LE(shownColumns, std::max(columns_ - 1, 1));
        const bool hasBar = line.find("█") != std::string::npos;
        EXPECT_TRUE(columns_ >= 20 || !hasBar) << columns_ << ": " << line;
        EXPECT_TRUE(columns_ <= 50 || hasBar) << columns_ << ": " << line;
    }
}

TEST_F(ProgressBarTest, LinesGoAboveIt) {
    ProgressBar bar = makeBar();
    bar.printAbove([&] { drawn_.emplace_back("first"); });
    bar.update(1);
    bar.printAbove([&] { drawn_.emplace_back("second"); });
    const std::string verifying = "\r\033[KVerifying export…";
    EXPECT_EQ(drawn_, (std::vector<std::string>{"first", verifying, "\r\033[K", "second", verifying}));
}

/// Standard error led elsewhere for as long as it lives.
class RedirectedStandardError {
public:
    explicit RedirectedStandardError(int descriptor)
        : saved_(::dup(STDERR_FILENO)) {
        ::dup2(descriptor, STDERR_FILENO);
    }
    ~RedirectedStandardError() {
        ::dup2(saved_, STDERR_FILENO);
        ::close(saved_);
    }
    RedirectedStandardError(const RedirectedStandardError&) = delete;
    RedirectedStandardError& operator=(const RedirectedStandardError&) = delete;

private:
    int saved_;
};

TEST(StandardErrorTest, IsATerminalOrNot) {
    const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_GE(terminal, 0);
    const int file = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    for (const auto& [descriptor, isTerminal] : {std::pair{terminal, true}, {file, false}}) {
        const RedirectedStandardError redirected(descriptor);
        EXPECT_EQ(standardErrorIsTerminal(), isTerminal);
    }
    ::close(file);
    ::close(terminal);
}

} // namespace
} // namespace flowtide
