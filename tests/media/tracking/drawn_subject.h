// Clips of a textured subject that moves over a textured ground by a formula, drawn frame by frame without a codec.
#pragma once

#include "core/subject_box.h"
#include "media/media_io.h"
#include "tests/support/clip_maker.h"
#include "tests/support/scripted_media.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>
#include <memory>
#include <utility>
#include <vector>

namespace flowtide::test {

/// Smooth noise, 0...1, that looks alike nowhere.
inline double noise(double x, double y, std::uint32_t seed) {
    const auto at = [seed](double i, double j) {
        const auto whole = [](double number) { return static_cast<std::uint32_t>(static_cast<int>(number)); };
        auto value = whole(i) * 374761393U + whole(j) * 668265263U + seed * 2246822519U;
        value = (value ^ value >> 13) * 1274126177U;
        return static_cast<double>((value ^ value >> 16) & 0xffff) / 0xffff;
    };
    const double i = std::floor(x);
    const double j = std::floor(y);
    const double u = x - i;
    const double v = y - j;
    return (1 - v) * ((1 - u) * at(i, j) + u * at(i + 1, j)) + v * ((1 - u) * at(i, j + 1) + u * at(i + 1, j + 1));
}

/// Y, Cb, Cr as 8-bit codes.
using Color = std::array<double, 3>;

struct DrawnSubject {
    /// Where the subject is, in fractions of the displayed frame.
    std::function<SubjectBox(double time)> box;
    /// Whether something stands before it.
    std::function<bool(double time)> isHidden = [](double) { return false; };

    /// Behind the subject, at a place of the displayed frame in fractions of it.
    static Color groundAt(double x, double y) {
        return {80 + 90 * noise(60 * x, 34 * y, 3), 128 + 12 * noise(20 * x, 11 * y, 4), 120};
    }
    /// The subject at a place of the frame, or what `ground` says where it is not.
    Color at(double x, double y, double time, const Color& ground) const {
        const SubjectBox place = box(time);
        const double u = (x - place.x) / place.width;
        const double v = (y - place.y) / place.height;
        if (isHidden(time) || u < 0 || u >= 1 || v < 0 || v >= 1) return ground;
        return {60 + 160 * noise(8 * u, 8 * v, 1), 100 + 20 * noise(3 * u, 3 * v, 2), 170};
    }
};

/// Plays a drawn subject. Ranges are answered as readers answer them.
class SubjectBackend : public ScriptedBackend {
public:
    SubjectBackend(DrawnSubject subject, std::vector<double> times)
        : ScriptedBackend(MediaScript{})
        , subject_(std::move(subject))
        , times_(std::move(times)) {}

    double failsFrom = std::numeric_limits<double>::infinity(); ///< frames from this time on cannot be decoded
    bool opens = true;
    mutable int decoded = 0;

    std::unique_ptr<VideoReader> openVideo(const ImportedClip& clip, PixelLayout layout, SourceRange range,
                                           const CancelCheck&) const override {
        if (!opens) throw FlowtideError::readerFailed("Not a movie");
        return std::make_unique<Reader>(*this, clip, layout, range);
    }

private:
    class Reader : public VideoReader {
    public:
        Reader(const SubjectBackend& backend, ImportedClip clip, PixelLayout layout, SourceRange range)
            : backend_(backend)
            , clip_(std::move(clip))
            , layout_(layout)
            , end_(range.upper)
            , pixels_(pixels()) {
            const auto& times = backend_.times_;
            const auto after = std::upper_bound(times.begin(), times.end(), range.lower + 1e-6);
            next_ = static_cast<std::size_t>(after - times.begin());
            if (next_ > 0) --next_;
        }
        std::optional<TimedFrame> next() override {
            if (next_ >= backend_.times_.size() || ended_) return std::nullopt;
            const double time = backend_.times_[next_++];
            if (time >= backend_.failsFrom) throw FlowtideError::readerFailed("Video decode failed mid-file");
            ended_ = time > end_;
            ++backend_.decoded;
            return TimedFrame{draw(time), {time}};
        }
        int concealedFrameCount() const override { return 0; }

    private:
        struct Pixel {
            double x; ///< in fractions of the displayed frame
            double y;
            Color ground;
        };

        /// Each plane's pixels, row by row.
        std::array<std::vector<Pixel>, 3> pixels() const {
            const auto width = static_cast<int>(clip_.encodedWidth());
            const auto height = static_cast<int>(clip_.encodedHeight());
            const AffineTransform& t = clip_.preferredTransform;
            std::array<std::vector<Pixel>, 3> result;
            for (std::size_t plane = 0; plane < 3; ++plane) {
                const int shiftX = plane == 0 ? 0 : layout_.horizontalChromaShift();
                const int shiftY = plane == 0 ? 0 : layout_.verticalChromaShift();
                for (int row = 0; row < planeHeight(layout_, height, plane); ++row)
                    for (int column = 0; column < planeWidth(layout_, width, plane); ++column) {
                        const double lyingX = (column << shiftX) + 0.5;
                        const double lyingY = (row + 0.5) * (1 << shiftY);
                        const double x = (t.a * lyingX + t.c * lyingY + t.tx) / static_cast<double>(clip_.width);
                        const double y = (t.b * lyingX + t.d * lyingY + t.ty) / static_cast<double>(clip_.height);
                        result[plane].push_back({x, y, DrawnSubject::groundAt(x, y)});
                    }
            }
            return result;
        }

        VideoFrame draw(double time) const {
            const auto width = static_cast<int>(clip_.encodedWidth());
            VideoFrame frame = numberedFrame(layout_, width, static_cast<int>(clip_.encodedHeight()), 0);
            for (std::size_t plane = 0; plane < 3; ++plane) {
                const auto columns = static_cast<std::size_t>(planeWidth(layout_, width, plane));
                for (std::size_t i = 0; i < pixels_[plane].size(); ++i) {
                    const Pixel& pixel = pixels_[plane][i];
                    const Color color = backend_.subject_.at(pixel.x, pixel.y, time, pixel.ground);
                    const auto code =
                        static_cast<std::uint16_t>(std::lround(color[plane] * (1 << (layout_.bitDepth - 8))));
                    auto* row = const_cast<std::uint8_t*>(frame.planes[plane].data) +
                                static_cast<std::ptrdiff_t>(i / columns) * frame.planes[plane].stride;
                    const auto bytes = static_cast<std::size_t>(layout_.bytesPerSample());
                    std::memcpy(row + i % columns * bytes, &code, bytes);
                }
            }
            return frame;
        }

        const SubjectBackend& backend_;
        ImportedClip clip_;
        PixelLayout layout_;
        double end_;
        std::array<std::vector<Pixel>, 3> pixels_;
        std::size_t next_ = 0;
        bool ended_ = false;
    };

    DrawnSubject subject_;
    std::vector<double> times_;
};

inline std::vector<double> evenTimes(int count, double interval) {
    std::vector<double> times;
    for (int i = 0; i < count; ++i)
        times.push_back(i * interval);
    return times;
}

/// A clip of 320 × 180 as encoded, turned by a transform of quarter turns.
inline ImportedClip drawnClip(double duration, MediaTime frameDuration, const AffineTransform& transform = {}) {
    ImportedClip clip;
    clip.duration = duration;
    clip.frameDuration = frameDuration;
    clip.video.encodedWidth = 320;
    clip.video.encodedHeight = 180;
    clip.preferredTransform = transform;
    const bool lies = transform.a != 0;
    clip.width = lies ? 320 : 180;
    clip.height = lies ? 180 : 320;
    return clip;
}

} // namespace flowtide::test
