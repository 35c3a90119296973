// Hands a muxer's bytes to one of our files.
#include "media/ffmpeg/output_stream.h"

#include <cstdio>

namespace flowtide::ffmpeg {

namespace {
constexpr int bufferSize = 256 * 1024;
} // namespace

OutputStream::OutputStream(OutputFile& file)
    : file_(file) {
    auto* buffer = static_cast<unsigned char*>(av_malloc(bufferSize));
    if (!buffer) throw std::bad_alloc();
    context_.reset(avio_alloc_context(buffer, bufferSize, 1, this, nullptr, &OutputStream::write, &OutputStream::seek));
    if (!context_) {
        av_free(buffer);
        throw std::bad_alloc();
    }
}

template <typename Operation>
int OutputStream::guarded(const Operation& operation) {
    // Exceptions must not cross the C library.
    try {
        operation();
        return 0;
    } catch (const std::system_error& error) {
        if (!failure_) failure_ = error.code();
    } catch (...) {
        if (!failure_) failure_ = std::make_error_code(std::errc::io_error);
    }
    return AVERROR(failure_.value());
}

int OutputStream::write(void* opaque, std::uint8_t* data, int size) {
    auto& self = *static_cast<OutputStream*>(opaque);
    const int code = self.guarded([&] { self.file_.write({data, static_cast<std::size_t>(size)}); });
    if (code < 0) return code;
    self.position_ += size;
    return size;
}

std::int64_t OutputStream::seek(void* opaque, std::int64_t offset, int whence) {
    auto& self = *static_cast<OutputStream*>(opaque);
    std::int64_t target = offset;
    switch (whence & ~AVSEEK_FORCE) {
    case AVSEEK_SIZE:
        return self.file_.size();
    case SEEK_SET:
        break;
    case SEEK_CUR:
        target += self.position_;
        break;
    case SEEK_END:
        target += self.file_.size();
        break;
    default:
        return AVERROR(EINVAL);
    }
    if (const int code = self.guarded([&] { self.file_.seek(target); }); code < 0) return code;
    return self.position_ = target;
}

} // namespace flowtide::ffmpeg
