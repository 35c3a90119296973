// Draws frames side by side.
#include "bench/track_strip.h"

#include "core/crop_plan.h"
#include "media/decode_layout.h"
#include "media/frames/display_frame.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <string>

namespace flowtide::bench {

namespace {

constexpr int columns = 6;
constexpr int rows = 4;
constexpr std::int64_t tileSide = 320;
constexpr double sameFrame = 1e-4; ///< s

/// An RGB picture that is drawn on.
class Canvas {
public:
    Canvas(int width, int height)
        : width_(width)
        , height_(height)
        , bytes_(static_cast<std::size_t>(3 * width * height), '\0') {}

    void set(int x, int y, std::uint32_t color) {
        if (x < 0 || y < 0 || x >= width_ || y >= height_) return;
        char* to = bytes_.data() + 3 * (static_cast<std::ptrdiff_t>(y) * width_ + x);
        for (const int shift : {16, 8, 0})
            *to++ = static_cast<char>(color >> shift & 0xff);
    }
    void outline(int left, int top, int width, int height, std::uint32_t color) {
        for (const int inset : {0, 1}) {
            for (int x = left; x < left + width; ++x) {
                set(x, top + inset, color);
                set(x, top + height - 1 - inset, color);
            }
            for (int y = top; y < top + height; ++y) {
                set(left + inset, y, color);
                set(left + width - 1 - inset, y, color);
            }
        }
    }
    void write(const std::filesystem::path& path) const {
        std::ofstream file(path, std::ios::binary);
        file << "P6\n" << width_ << " " << height_ << "\n255\n" << bytes_;
        if (!file.flush()) throw FlowtideError::outputFailed("Could not write " + path.string() + ".");
    }

private:
    int width_;
    int height_;
    std::string bytes_;
};

} // namespace

void writeStrip(const std::filesystem::path& path, const MediaBackend& backend, const ImportedClip& clip,
                const std::vector<tracking::Sighting>& sightings, const SpeedKeyframes& keyframes,
                double cropFraction) {
    const OutputSize tile = fittedSize({clip.width, clip.height}, {tileSide, tileSide});
    const auto width = static_cast<int>(tile.width);
    const auto height = static_cast<int>(tile.height);
    Canvas canvas(columns * width, rows * height);
    DisplayConverter converter;
    const PictureColor color = pictureColor(clip);
    const auto reader = backend.openVideo(clip, decodePixelFormat(clip), {0, clip.duration});
    int done = 0;
    while (auto frame = reader->next()) {
        const double time = frame->time.value;
        if (done == columns * rows) break;
        if (time < done * clip.duration / (columns * rows) - sameFrame) continue;
        const int left = done % columns * width;
        const int top = done / columns * height;
        ++done;
        const DisplayFrame picture = converter.convert(frame->frame, color, clip.preferredTransform, tile);
        for (int y = 0; y < height; ++y) {
            const auto* row = reinterpret_cast<const std::uint32_t*>(
                reinterpret_cast<const std::uint8_t*>(picture.pixels) + y * picture.stride);
            for (int x = 0; x < width; ++x)
                canvas.set(left + x, top + y, row[x]);
        }
        const auto pixels = [](double share, int side) { return static_cast<int>(std::lround(share * side)); };
        if (cropFraction < 1) {
            const double middle = (1 - cropFraction) * cropCenter(keyframes, frame->time);
            canvas.outline(left + pixels(middle, width), top, pixels(cropFraction, width), height, 0xffffff);
        }
        const auto found = std::find_if(sightings.begin(), sightings.end(), [&](const tracking::Sighting& sighting) {
            return std::abs(sighting.time - time) < sameFrame;
        });
        if (found == sightings.end())
            canvas.outline(left, top, width, height, 0xff0000);
        else
            canvas.outline(left + pixels(found->box.x, width), top + pixels(found->box.y, height),
                           pixels(found->box.width, width), pixels(found->box.height, height), 0x00ff00);
    }
    canvas.write(path);
}

} // namespace flowtide::bench
