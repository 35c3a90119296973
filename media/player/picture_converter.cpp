// The thread, and nothing of the conversion.
#include "media/player/picture_converter.h"

#include "media/failure_sentence.h"

#include <exception>
#include <utility>

namespace flowtide {

PictureConverter::PictureConverter(std::function<void()> notify)
    : notify_(std::move(notify))
    , thread_([this] { run(); }) {}

PictureConverter::~PictureConverter() {
    {
        const std::scoped_lock guard(lock_);
        stopping_ = true;
    }
    wake_.notify_one();
}

void PictureConverter::convert(PlayerPicture picture, OutputSize box) {
    std::optional<Job> replaced = Job{std::move(picture), box};
    {
        const std::scoped_lock guard(lock_);
        replaced.swap(next_);
    }
    wake_.notify_one();
}

std::optional<DisplayedPicture> PictureConverter::take() {
    const std::scoped_lock guard(lock_);
    return std::exchange(done_, std::nullopt);
}

void PictureConverter::run() {
    DisplayConverter converter;
    for (;;) {
        Job job;
        {
            std::unique_lock guard(lock_);
            wake_.wait(guard, [this] { return next_ || stopping_; });
            if (stopping_) return;
            job = *std::exchange(next_, std::nullopt);
        }
        std::optional<DisplayedPicture> result = DisplayedPicture{std::move(job.picture), {}, {}};
        const PlayerPicture& picture = result->picture;
        try {
            result->pixels =
                converter.convert(picture.frame, picture.color, picture.orientation, fittedSize(picture.size, job.box));
        } catch (const std::exception& error) {
            result->failure = sentenceFor(error);
        }
        {
            const std::scoped_lock guard(lock_);
            result.swap(done_);
        }
        notify_();
    }
}

} // namespace flowtide
