// Makes and reads numbered clips, with our own writer and reader.
#include "tests/support/clip_maker.h"

#include "media/export/temporary_export.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace flowtide::test {

namespace {

constexpr int stripeCount = 16;
constexpr int numberBits = 12;
constexpr int checkBits = stripeCount - numberBits;

unsigned stripesOf(std::int64_t number) {
    const auto value = static_cast<unsigned>(number) & ((1U << numberBits) - 1);
    const unsigned check = (value * 7 + (value >> 4) * 3 + 5) & ((1U << checkBits) - 1);
    return value | (check << numberBits);
}

void put(std::vector<std::uint8_t>& bytes, std::size_t index, int bytesPerSample, int value) {
    if (bytesPerSample == 1) {
        bytes[index] = static_cast<std::uint8_t>(value);
    } else {
        bytes[2 * index] = static_cast<std::uint8_t>(value & 0xFF);
        bytes[2 * index + 1] = static_cast<std::uint8_t>(value >> 8);
    }
}

int sampleAt(const VideoFrame& frame, int x, int y) {
    const auto& plane = frame.planes[0];
    const std::uint8_t* row = plane.data + y * plane.stride;
    return frame.layout.bytesPerSample() == 1 ? row[x] : row[2 * x] | (row[2 * x + 1] << 8);
}

} // namespace

VideoFrame numberedFrame(PixelLayout layout, int width, int height, std::int64_t number) {
    const int bytesPerSample = layout.bytesPerSample();
    const int scale = 1 << (layout.bitDepth - 8);
    const int chromaWidth = (width + (1 << layout.horizontalChromaShift()) - 1) >> layout.horizontalChromaShift();
    const int chromaHeight = (height + (1 << layout.verticalChromaShift()) - 1) >> layout.verticalChromaShift();
    const auto lumaSamples = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    const auto chromaSamples = static_cast<std::size_t>(chromaWidth) * static_cast<std::size_t>(chromaHeight);
    auto bytes = std::make_shared<std::vector<std::uint8_t>>((lumaSamples + 2 * chromaSamples) *
                                                             static_cast<std::size_t>(bytesPerSample));
    const unsigned stripes = stripesOf(number);
    for (int y = 0; y < height; ++y) {
        const bool lit = (stripes >> (y * stripeCount / height)) & 1U;
        for (int x = 0; x < width; ++x)
            put(*bytes, static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x),
                bytesPerSample, (lit ? 200 : 50) * scale);
    }
    for (std::size_t i = 0; i < 2 * chromaSamples; ++i)
        put(*bytes, lumaSamples + i, bytesPerSample, 128 * scale);

    VideoFrame frame;
    frame.layout = layout;
    frame.width = width;
    frame.height = height;
    const auto lumaBytes = lumaSamples * static_cast<std::size_t>(bytesPerSample);
    const auto chromaBytes = chromaSamples * static_cast<std::size_t>(bytesPerSample);
    frame.planes[0] = {bytes->data(), width * bytesPerSample};
    frame.planes[1] = {bytes->data() + lumaBytes, chromaWidth * bytesPerSample};
    frame.planes[2] = {bytes->data() + lumaBytes + chromaBytes, chromaWidth * bytesPerSample};
    frame.owner = bytes;
    return frame;
}

std::optional<std::int64_t> numberOf(const VideoFrame& frame) {
    unsigned stripes = 0;
    for (int stripe = 0; stripe < stripeCount; ++stripe) {
        const int y = (2 * stripe + 1) * frame.height / (2 * stripeCount);
        long sum = 0;
        for (int x = 0; x < frame.width; ++x)
            sum += sampleAt(frame, x, y);
        if (sum / frame.width > (125 << (frame.layout.bitDepth - 8))) stripes |= 1U << stripe;
    }
    const std::int64_t number = stripes & ((1U << numberBits) - 1);
    if (stripesOf(number) != stripes) return std::nullopt;
    return number;
}

std::vector<std::int64_t> frameNumbers(const MediaBackend& backend, const ImportedClip& clip) {
    PixelLayout layout;
    layout.bitDepth = clip.videoBitDepth() < 10 ? 8 : 10;
    layout.fullRange = clip.videoIsFullRange();
    const auto reader = backend.openVideo(clip, layout, {0, clip.duration});
    std::vector<std::int64_t> numbers;
    while (const auto frame = reader->next())
        numbers.push_back(numberOf(frame->frame).value_or(-1));
    return numbers;
}

double chirp(double seconds, int channel) {
    return 0.5 * std::sin(2 * std::numbers::pi * (200 * seconds + 150 * seconds * seconds) + 0.7 * channel);
}

void makeClip(const MediaBackend& backend, const std::filesystem::path& path, const ClipRecipe& recipe) {
    TemporaryExport file(path);
    const auto writer = backend.createMovie(file, fileTypeForPath(path), recipe.metadata);
    VideoSettings video;
    video.codec = recipe.codec;
    video.width = recipe.width;
    video.height = recipe.height;
    video.frameDuration = recipe.frameDuration;
    video.layout = recipe.layout;
    video.color = recipe.color;
    video.displayMatrix = recipe.displayMatrix;
    if (!isProRes(recipe.codec)) video.averageBitRate = 1'000'000;
    video.expectedDuration = recipe.frameDuration.secondsTimes(recipe.frameCount);
    writer->addVideo(video);
    const bool hasAudio = recipe.sampleRate > 0;
    if (hasAudio) {
        AudioSettings audio;
        audio.format = recipe.audioFormat;
        audio.sampleRate = recipe.sampleRate;
        audio.channels = recipe.channels;
        audio.channelLayout = recipe.channelLayout;
        audio.bitRate = recipe.audioBitRate;
        audio.bitDepth = recipe.audioBitDepth;
        writer->addAudio(audio);
    }
    writer->start();
    const auto pictureOf = [&](std::int64_t i) {
        if (recipe.picture) return recipe.picture(i);
        return numberedFrame(recipe.layout, recipe.width, recipe.height,
                             recipe.frameNumber ? recipe.frameNumber(i) : i);
    };
    for (std::int64_t i = 0; i < recipe.frameCount; ++i)
        writer->appendVideo(pictureOf(i), i, 1);
    writer->finishVideo();
    if (hasAudio) {
        const auto total = std::llround(video.expectedDuration * recipe.sampleRate);
        std::vector<float> samples;
        for (std::int64_t n = 0; n < total; ++n)
            for (int channel = 0; channel < recipe.channels; ++channel)
                samples.push_back(
                    recipe.sound ? static_cast<float>(recipe.sound(static_cast<double>(n) / recipe.sampleRate, channel))
                                 : 0.0F);
        writer->appendAudio(samples);
        writer->finishAudio();
    }
    writer->finish();
    file.moveIntoPlace();
}

} // namespace flowtide::test
