// Any frames: in-between frames of every layout, size, stride and sample value are made without reading past a plane,
// have the size and layout asked for, and depend on samples alone.
#include "media/flow/optical_flow_interpolator.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

namespace {

using namespace flowtide;

constexpr int longestSide = 8192;
constexpr int largestArea = 2 * longestSide; // luma samples; keeps an input under a second or two, sanitized

void require(bool holds) {
    if (!holds) std::abort();
}

/// The input's bytes in order; zeros after its end.
class Bytes {
public:
    Bytes(const std::uint8_t* data, std::size_t size)
        : data_(data)
        , size_(size) {}

    std::uint8_t next() { return position_ < size_ ? data_[position_++] : std::uint8_t{0}; }
    int nextWord() {
        const int low = next();
        return low | next() << 8;
    }
    /// 0...count − 1.
    int below(int count) { return nextWord() % count; }

private:
    const std::uint8_t* data_;
    std::size_t size_;
    std::size_t position_ = 0;
};

/// What the frames of one input have in common.
struct Scene {
    PixelLayout layout;
    int width = 1;
    int height = 1;
    int pattern = 0;
    std::uint32_t seed = 0;
    int moveX = 0; ///< luma samples from frame to frame
    int moveY = 0;
    std::array<std::uint8_t, 16> raw{}; ///< samples taken from the input itself
};

std::uint32_t hashed(std::uint32_t value) {
    value = (value ^ (value >> 16)) * 0x7feb352dU;
    value = (value ^ (value >> 15)) * 0x846ca68bU;
    return value ^ (value >> 16);
}

/// A sample of the scene's endless picture, eight bits or, for deeper layouts, sixteen: more than their depth has.
unsigned sampleAt(const Scene& scene, int frame, std::size_t plane, int x, int y) {
    const int sourceX = x - frame * scene.moveX;
    const int sourceY = y - frame * scene.moveY;
    const auto mixed = [&](int unit) {
        return hashed(scene.seed ^ static_cast<std::uint32_t>(plane) ^
                      hashed(static_cast<std::uint32_t>(sourceX / unit) +
                             0x9e3779b9U * static_cast<std::uint32_t>(sourceY / unit)));
    };
    const bool deep = scene.layout.bytesPerSample() > 1;
    const unsigned largest = (1U << scene.layout.bitDepth) - 1;
    switch (scene.pattern) {
    case 0: // flat
        return scene.raw[static_cast<std::size_t>(frame)] * largest / 255;
    case 1: // a moving texture of 8 × 8 tiles
        return mixed(8) & largest;
    case 2: // moving noise
        return mixed(1) & largest;
    case 3: // noise of its own in each frame, any bits
        return hashed(mixed(1) + static_cast<std::uint32_t>(frame)) & (deep ? 0xffffU : 0xffU);
    case 4: // black and white, as far apart as the bytes allow
        return ((sourceX ^ sourceY) & 1) != 0 ? (deep ? 0xffffU : 0xffU) : 0U;
    case 5: // a smooth ramp
        return static_cast<unsigned>(sourceX * 3 + sourceY * 5 + (1 << 20)) & largest;
    case 6: // a moving texture under a change of brightness
        return std::min((mixed(4) & largest) * scene.raw[static_cast<std::size_t>(frame)] / 64, largest);
    default: // the input's own bytes
        return scene.raw[static_cast<std::size_t>((sourceX + 7 * sourceY) & 15)] * (deep ? 0x0101U : 1U);
    }
}

/// How a frame lies in memory.
struct Placement {
    std::ptrdiff_t slack = 0; ///< bytes between rows
    bool upsideDown = false;  ///< rows run backwards in memory
    int lead = 0;             ///< samples before the first row, so that planes begin on odd places
    std::uint8_t filling = 0; ///< of the bytes that are no samples
};

/// Each plane is an allocation of its own that ends with its last sample.
VideoFrame drawn(const Scene& scene, int number, const Placement& placement) {
    using Planes = std::array<std::unique_ptr<std::uint8_t[]>, 3>;
    const auto memory = std::make_shared<Planes>();
    VideoFrame frame;
    frame.layout = scene.layout;
    frame.width = scene.width;
    frame.height = scene.height;
    const int sampleBytes = scene.layout.bytesPerSample();
    for (std::size_t plane = 0; plane < 3; ++plane) {
        const int columns = planeWidth(scene.layout, scene.width, plane);
        const int rows = planeHeight(scene.layout, scene.height, plane);
        const auto rowBytes = static_cast<std::ptrdiff_t>(planeRowBytes(scene.layout, scene.width, plane));
        const std::ptrdiff_t stride = rowBytes + placement.slack;
        const std::ptrdiff_t lead = placement.lead * sampleBytes;
        const std::ptrdiff_t size = lead + stride * (rows - 1) + rowBytes;
        auto& bytes = (*memory)[plane];
        bytes.reset(new std::uint8_t[static_cast<std::size_t>(size)]);
        std::memset(bytes.get(), placement.filling, static_cast<std::size_t>(size));
        frame.planes[plane] = {bytes.get() + lead + (placement.upsideDown ? stride * (rows - 1) : 0),
                               placement.upsideDown ? -stride : stride};
        for (int y = 0; y < rows; ++y) {
            std::uint8_t* line =
                bytes.get() + (frame.planes[plane].data - bytes.get()) + y * frame.planes[plane].stride;
            for (int x = 0; x < columns; ++x) {
                const unsigned sample = sampleAt(scene, number, plane, x, y);
                for (int byte = 0; byte < sampleBytes; ++byte)
                    *line++ = static_cast<std::uint8_t>(sample >> (8 * byte));
            }
        }
    }
    frame.owner = memory;
    return frame;
}

bool sameSamples(const VideoFrame& a, const VideoFrame& b) {
    for (std::size_t plane = 0; plane < 3; ++plane)
        for (int y = 0; y < planeHeight(a.layout, a.height, plane); ++y)
            if (std::memcmp(a.planes[plane].data + y * a.planes[plane].stride,
                            b.planes[plane].data + y * b.planes[plane].stride,
                            planeRowBytes(a.layout, a.width, plane)) != 0)
                return false;
    return true;
}

Scene sceneFrom(Bytes& bytes) {
    constexpr std::array chromas{ChromaSubsampling::yuv420, ChromaSubsampling::yuv422, ChromaSubsampling::yuv444};
    Scene scene;
    const std::uint8_t kind = bytes.next();
    scene.layout = {chromas[(kind & 31) % chromas.size()], (kind & 32) != 0 ? 10 : 8, (kind & 64) != 0};
    const bool isUpright = (kind & 128) != 0;
    // Mostly sizes that have room for a texture in both directions.
    const int longSide = 1 + bytes.below(longestSide >> (bytes.next() % 8));
    const int shortSide = 1 + bytes.below(std::min(largestArea / longSide, longestSide));
    scene.width = isUpright ? shortSide : longSide;
    scene.height = isUpright ? longSide : shortSide;
    scene.pattern = bytes.below(8);
    scene.seed = static_cast<std::uint32_t>(bytes.nextWord());
    scene.moveX = static_cast<std::int8_t>(bytes.next());
    scene.moveY = static_cast<std::int8_t>(bytes.next());
    for (auto& sample : scene.raw)
        sample = bytes.next();
    return scene;
}

Placement placementFrom(Bytes& bytes, PixelLayout layout) {
    Placement placement;
    const std::uint8_t kind = bytes.next();
    placement.upsideDown = (kind & 1) != 0;
    placement.lead = (kind >> 1) % 4;
    placement.slack = static_cast<std::ptrdiff_t>(kind >> 3) * layout.bytesPerSample();
    placement.filling = bytes.next();
    return placement;
}

/// The frames of a scene, an interval apart.
std::vector<TimedFrame> framesOf(const Scene& scene, const std::array<Placement, 4>& places, double interval) {
    std::vector<TimedFrame> frames;
    for (int number = 0; number < static_cast<int>(places.size()); ++number)
        frames.push_back({drawn(scene, number, places[static_cast<std::size_t>(number)]), {number * interval}});
    return frames;
}

/// Frames `first` and the next one, with the neighbours that are wanted and exist.
FramePair pairOf(const std::vector<TimedFrame>& frames, std::size_t first, bool before, bool after) {
    FramePair pair{frames[first], frames[first + 1], {}, {}};
    if (before && first > 0) pair.before = frames[first - 1];
    if (after && first + 2 < frames.size()) pair.after = frames[first + 2];
    return pair;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Bytes bytes(data, size);
    const Scene scene = sceneFrom(bytes);
    std::array<Placement, 4> places;
    std::array<Placement, 4> tight;
    for (std::size_t i = 0; i < places.size(); ++i) {
        places[i] = placementFrom(bytes, scene.layout);
        tight[i].filling = static_cast<std::uint8_t>(~places[i].filling);
    }
    const std::uint8_t wishes = bytes.next();
    const bool before = (wishes & 1) != 0;
    const bool after = (wishes & 2) != 0;
    const bool comparing = (wishes & 12) == 0; // costs as much again
    const double interval = 1.0 / (1 + (wishes >> 4));
    const auto frames = framesOf(scene, places, interval);
    const auto tightFrames = comparing ? framesOf(scene, tight, interval) : std::vector<TimedFrame>{};

    OpticalFlowInterpolator interpolator(scene.width, scene.height, scene.layout);
    for (int count = 1 + bytes.below(3); count > 0; --count) {
        const auto first = static_cast<std::size_t>(bytes.below(3));
        // From a little before the pair's first frame to a little after its second.
        const double phase = (bytes.nextWord() - 1000) / 63536.0;
        const SourceSeconds time{interval * (static_cast<double>(first) + phase)};
        const FramePair pair = pairOf(frames, first, before, after);
        const VideoFrame frame = interpolator.render(pair, time);
        require(static_cast<bool>(frame) && frame.layout == scene.layout);
        require(frame.width == scene.width && frame.height == scene.height);
        if (time <= pair.first.time) require(sameSamples(frame, pair.first.frame));
        if (time >= pair.second.time) require(sameSamples(frame, pair.second.frame));
        require(sameSamples(frame, frame)); // reads every sample: none may lie outside the frame's memory
        // Neither what was rendered before nor what lies between the rows matters, nor the machine.
        if (comparing) {
            OpticalFlowInterpolator fresh(scene.width, scene.height, scene.layout,
                                          {.threads = 1, .instructions = InstructionSet::baseline});
            require(sameSamples(frame, fresh.render(pairOf(tightFrames, first, before, after), time)));
        }
    }
    return 0;
}
