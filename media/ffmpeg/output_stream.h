// libav's byte output on one of our files.
#pragma once

#include "media/ffmpeg/handles.h"
#include "media/media_io.h"

#include <system_error>

namespace flowtide::ffmpeg {

/// An AVIOContext that writes to an OutputFile and remembers what went wrong with it.
class OutputStream {
public:
    explicit OutputStream(OutputFile& file);
    OutputStream(const OutputStream&) = delete;
    OutputStream& operator=(const OutputStream&) = delete;

    AVIOContext* context() const { return context_.get(); }
    /// The first failure of the file; no error while there is none.
    const std::error_code& failure() const { return failure_; }

private:
    static int write(void* opaque, std::uint8_t* data, int size);
    static std::int64_t seek(void* opaque, std::int64_t offset, int whence);
    template <typename Operation>
    int guarded(const Operation& operation);

    OutputFile& file_;
    std::int64_t position_ = 0;
    std::error_code failure_;
    IOContextPtr context_;
};

} // namespace flowtide::ffmpeg
