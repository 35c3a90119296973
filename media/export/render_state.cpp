// The share of each track in the progress, and the failure that is kept.
#include "media/export/render_state.h"

#include <algorithm>
#include <utility>

namespace flowtide {

namespace {
// Sound is a twentieth of the work of an ordinary export.
constexpr double audioShare = 0.05;
// Of the pictures: an encoder still holds some when it has been given the last one.
constexpr double videoFractionBeforeFinish = 0.99;
} // namespace

void RenderState::recordError(std::exception_ptr error) {
    const std::scoped_lock guard(lock_);
    if (!error_) error_ = std::move(error);
}

bool RenderState::hasError() const {
    const std::scoped_lock guard(lock_);
    return error_ != nullptr;
}

void RenderState::rethrowError() const {
    std::exception_ptr error;
    {
        const std::scoped_lock guard(lock_);
        error = error_;
    }
    if (error) std::rethrow_exception(error);
}

void RenderState::setFramesWritten(std::int64_t count, std::int64_t total) {
    const std::scoped_lock guard(lock_);
    framesWritten_ = count;
    const double fraction = total > 0 ? static_cast<double>(count) / static_cast<double>(total) : 1;
    videoFraction_ = std::min(fraction, videoFractionBeforeFinish);
}

void RenderState::setVideoFinished() {
    const std::scoped_lock guard(lock_);
    videoFraction_ = 1;
}

std::int64_t RenderState::framesWritten() const {
    const std::scoped_lock guard(lock_);
    return framesWritten_;
}

void RenderState::setAudioFraction(double fraction) {
    const std::scoped_lock guard(lock_);
    audioFraction_ = fraction;
}

double RenderState::progress(bool hasAudio) const {
    const std::scoped_lock guard(lock_);
    return hasAudio ? (1 - audioShare) * videoFraction_ + audioShare * audioFraction_ : videoFraction_;
}

} // namespace flowtide
