// What the video and the audio worker of one render share.
#pragma once

#include <cstdint>
#include <exception>
#include <mutex>

namespace flowtide {

/// Thread-safe record of a render's progress and of its first failure.
class RenderState {
public:
    /// Keeps the first failure; later ones do not replace it.
    void recordError(std::exception_ptr error);
    bool hasError() const;
    /// Throws the recorded failure, if there is one.
    void rethrowError() const;

    /// Frames given to the encoder so far, of `total`.
    void setFramesWritten(std::int64_t count, std::int64_t total);
    /// The encoder has let go of the last one.
    void setVideoFinished();
    std::int64_t framesWritten() const;
    /// Share of the sound written, 0...1.
    void setAudioFraction(double fraction);
    /// The whole render's progress, 0...1; 1 only when both tracks are done.
    double progress(bool hasAudio) const;

private:
    mutable std::mutex lock_; ///< guards everything below
    std::exception_ptr error_;
    std::int64_t framesWritten_ = 0;
    double videoFraction_ = 0;
    double audioFraction_ = 0;
};

} // namespace flowtide
