// Makes the demo and its clip: an orbiting light over a drifting gradient, a tone that rises, a click at each half
// turn.
#include "cli/demo.h"

#include "cli/cancel_on_signal.h"
#include "media/export/export_engine.h"
#include "media/export/temporary_export.h"
#include "media/failure_sentence.h"
#include "media/flowtide_error.h"

#include <fmt/format.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <numbers>

namespace flowtide {

namespace {

constexpr int width = 640;
constexpr int height = 360;
constexpr int framesPerSecond = 30;
constexpr int frameCount = 4 * framesPerSecond;
constexpr int sampleRate = 48'000;
constexpr double halfTurnSeconds = 0.5;

struct Color {
    double red, green, blue; // 0...1
};

Color mixed(Color from, Color to, double amount) {
    const auto mix = [amount](double a, double b) { return a + (b - a) * amount; };
    return {mix(from.red, to.red), mix(from.green, to.green), mix(from.blue, to.blue)};
}

/// The picture at a point (pixels) and a time: night blue to teal, a ring, and the light with its tail on it.
Color pictureAt(double x, double y, double seconds) {
    constexpr Color night{0.05, 0.06, 0.12};
    constexpr Color teal{0.06, 0.36, 0.38};
    constexpr Color ring{0.16, 0.42, 0.46};
    constexpr Color light{1.0, 0.86, 0.55};
    constexpr double radius = 118;
    constexpr double lightReach = 19; // pixels, its soft edge included
    const double drift = 0.5 + 0.5 * std::sin((x + 0.6 * y) / 210 + seconds * 0.8);
    Color color = mixed(night, teal, drift * 0.8);

    const double dx = x - width / 2.0;
    const double dy = y - height / 2.0;
    const double distance = std::hypot(dx, dy);
    if (std::abs(distance - radius) >= lightReach) return color; // nearly all of the picture; the rest costs more
    color = mixed(color, ring, std::clamp(2 - std::abs(distance - radius), 0.0, 1.0));

    const double turn = std::numbers::pi * seconds / halfTurnSeconds;
    const double behind = std::fmod(turn - std::atan2(dy, dx) + 4 * std::numbers::pi, 2 * std::numbers::pi);
    const double tail = std::exp(-behind * 2.2) * std::clamp(10 - std::abs(distance - radius), 0.0, 1.0);
    color = mixed(color, light, 0.7 * tail);
    const double toLight = std::hypot(dx - radius * std::cos(turn), dy - radius * std::sin(turn));
    return mixed(color, light, std::clamp(lightReach - toLight, 0.0, 1.0));
}

std::uint8_t code(double value) {
    return static_cast<std::uint8_t>(std::lround(std::clamp(value, 0.0, 255.0)));
}

/// One frame in BT.709 video range, chroma averaged over two by two pixels.
VideoFrame drawFrame(int index) {
    constexpr int chromaWidth = width / 2;
    constexpr int chromaHeight = height / 2;
    constexpr std::size_t lumaSize = static_cast<std::size_t>(width) * height;
    constexpr std::size_t chromaSize = static_cast<std::size_t>(chromaWidth) * chromaHeight;
    auto bytes = std::make_shared<std::vector<std::uint8_t>>(lumaSize + 2 * chromaSize);
    const double seconds = static_cast<double>(index) / framesPerSecond;
    for (int y = 0; y < height; y += 2) {
        for (int x = 0; x < width; x += 2) {
            double blueSum = 0;
            double redSum = 0;
            for (const auto& [px, py] : {std::pair{x, y}, {x + 1, y}, {x, y + 1}, {x + 1, y + 1}}) {
                const Color color = pictureAt(px, py, seconds);
                const double luma = 0.2126 * color.red + 0.7152 * color.green + 0.0722 * color.blue;
                (*bytes)[static_cast<std::size_t>(py * width + px)] = code(16 + 219 * luma);
                blueSum += (color.blue - luma) / 1.8556;
                redSum += (color.red - luma) / 1.5748;
            }
            const auto chroma = static_cast<std::size_t>(y / 2 * chromaWidth + x / 2);
            (*bytes)[lumaSize + chroma] = code(128 + 224 * blueSum / 4);
            (*bytes)[lumaSize + chromaSize + chroma] = code(128 + 224 * redSum / 4);
        }
    }
    VideoFrame frame;
    frame.width = width;
    frame.height = height;
    frame.planes[0] = {bytes->data(), width};
    frame.planes[1] = {bytes->data() + lumaSize, chromaWidth};
    frame.planes[2] = {bytes->data() + lumaSize + chromaSize, chromaWidth};
    frame.owner = std::move(bytes);
    return frame;
}

/// The sound under one frame: a tone that rises, and at each half turn a click from the side the light is on.
std::vector<float> drawSound(int index) {
    constexpr int samplesPerFrame = sampleRate / framesPerSecond;
    std::vector<float> samples;
    for (int n = index * samplesPerFrame; n < (index + 1) * samplesPerFrame; ++n) {
        const double seconds = static_cast<double>(n) / sampleRate;
        const double tone = 0.12 * std::sin(2 * std::numbers::pi * (220 * seconds + 15 * seconds * seconds));
        const double sinceClick = std::fmod(seconds, halfTurnSeconds);
        const double click = 0.5 * std::exp(-sinceClick * 90) * std::sin(2 * std::numbers::pi * 1200 * sinceClick);
        const double rightShare = 0.5 + 0.45 * std::cos(std::numbers::pi * seconds / halfTurnSeconds);
        samples.push_back(static_cast<float>(tone + click * (1 - rightShare)));
        samples.push_back(static_cast<float>(tone + click * rightShare));
    }
    return samples;
}

void makeDemoClip(const MediaBackend& backend, const std::filesystem::path& path,
                  const std::atomic<bool>& isCancelled) {
    TemporaryExport file(path);
    const auto writer = backend.createMovie(file, fileTypeForPath(path), {});
    VideoSettings video;
    video.width = width;
    video.height = height;
    video.frameDuration = {1, framesPerSecond};
    video.color = ColorProperties{"bt709", "bt709", "bt709"};
    video.averageBitRate = 3'000'000;
    video.expectedDuration = static_cast<double>(frameCount) / framesPerSecond;
    writer->addVideo(video);
    AudioSettings audio;
    audio.sampleRate = sampleRate;
    audio.channels = 2;
    audio.bitRate = 192'000;
    writer->addAudio(audio);
    writer->start();
    for (int i = 0; i < frameCount; ++i) {
        if (isCancelled) throw FlowtideError::exportCancelled();
        writer->appendVideo(drawFrame(i), i, 1);
        writer->appendAudio(drawSound(i));
    }
    writer->finishVideo();
    writer->finishAudio();
    writer->finish();
    file.moveIntoPlace();
}

struct DemoNames {
    std::filesystem::path source;
    std::filesystem::path retimed;
};

/// The first pair of names that nothing in the folder has when the demo begins: nobody was asked whether a file may be
/// replaced.
DemoNames freeNames(const std::filesystem::path& folder) {
    const auto isTaken = [](const std::filesystem::path& path) {
        return std::filesystem::exists(std::filesystem::symlink_status(path));
    };
    for (int number = 1;; ++number) {
        const std::string stem = number == 1 ? "demo" : fmt::format("demo-{}", number);
        DemoNames names{folder / (stem + ".mov"), folder / (stem + "-retimed.mov")};
        if (!isTaken(names.source) && !isTaken(names.retimed)) return names;
    }
}

} // namespace

int runDemo(const std::filesystem::path& folder, const MediaBackend& backend, const Console& console) {
    try {
        ExportEngine engine(backend, [](std::string_view) {});
        std::atomic<bool> isCancelled = false;
        const CancelOnSignal cancelOnSignal([&] {
            isCancelled = true;
            engine.cancel();
        });
        std::filesystem::create_directories(folder);
        const auto [source, retimed] = freeNames(folder);
        makeDemoClip(backend, source, isCancelled);
        console.print(
            fmt::format("The clip, four seconds long, is at {}.", std::filesystem::absolute(source).string()));
        ExportRequest request;
        request.clip = ImportedClip::load(backend, source);
        for (const auto& [time, speed] : {std::pair{0.0, 1.0}, {1.5, 0.25}, {2.5, 0.25}, {4.0, 1.0}})
            request.keyframes.push_back({Uuid::random(), time, speed, SpeedKeyframeRole::curve});
        request.smoothing = 1;
        request.outputURL = retimed;
        const ExportValidationReport report = engine.run(request, [](double) {});
        console.print(fmt::format("The export, which slows down to a quarter of the speed and back, is at {}.",
                                  std::filesystem::absolute(retimed).string()));
        console.print(fmt::format("It was verified against the clip: {}.", report.summary));
        return 0;
    } catch (const std::exception& error) {
        console.complain("The demo failed: " + sentenceFor(error));
        return 1;
    }
}

} // namespace flowtide
