// Display pixels, made on a thread of their own.
#pragma once

#include "media/frames/display_frame.h"
#include "media/player/player_picture.h"

#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

namespace flowtide {

/// A picture in the display's pixels.
struct DisplayedPicture {
    PlayerPicture picture;
    DisplayFrame pixels;
    std::string failure; ///< the sentence that says why there are none
};

/// Converts one picture after the other; of those that come while it works the latest. Ends with its destructor.
class PictureConverter {
public:
    /// `notify` is called on the converter's thread when take() has something new.
    explicit PictureConverter(std::function<void()> notify);
    ~PictureConverter();
    PictureConverter(const PictureConverter&) = delete;
    PictureConverter& operator=(const PictureConverter&) = delete;

    /// As large as `box` holds, in pixels of the display.
    void convert(PlayerPicture picture, OutputSize box);
    /// What was converted last; once.
    std::optional<DisplayedPicture> take();

private:
    struct Job {
        PlayerPicture picture;
        OutputSize box;
    };
    void run();

    const std::function<void()> notify_;

    std::mutex lock_; ///< guards everything below
    std::condition_variable wake_;
    std::optional<Job> next_;
    std::optional<DisplayedPicture> done_;
    bool stopping_ = false;

    std::jthread thread_; ///< last: everything else is there when it starts
};

} // namespace flowtide
