// Runs the tracker with decoding left out of its cost; draws the peers from the tracker's own kernels.
#include "bench/track_methods.h"

#include "media/decode_layout.h"
#include "media/tracking/correlation_tracker.h"
#include "media/tracking/picture_walk.h"
#include "media/tracking/search_window.h"
#include "media/tracking/subject_tracking_engine.h"

#include <algorithm>
#include <cmath>
#include <ctime>
#include <memory>
#include <numbers>

namespace flowtide::bench {

namespace {

using namespace tracking;

double threadSeconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

/// Passes everything on, and adds up the thread's time that reading takes.
class TimedBackend : public MediaBackend {
public:
    explicit TimedBackend(const MediaBackend& backend)
        : backend_(backend) {}

    double readingSeconds() const { return *seconds_; }

    ProbedMedia probe(const std::filesystem::path& path) const override { return backend_.probe(path); }
    std::unique_ptr<VideoReader> openVideo(const ImportedClip& clip, PixelLayout layout, SourceRange range,
                                           const CancelCheck& isCancelled) const override {
        class Reader : public VideoReader {
        public:
            Reader(std::unique_ptr<VideoReader> reader, std::shared_ptr<double> seconds)
                : reader_(std::move(reader))
                , seconds_(std::move(seconds)) {}
            std::optional<TimedFrame> next() override {
                const double begin = threadSeconds();
                auto frame = reader_->next();
                *seconds_ += threadSeconds() - begin;
                return frame;
            }
            int concealedFrameCount() const override { return reader_->concealedFrameCount(); }

        private:
            std::unique_ptr<VideoReader> reader_;
            std::shared_ptr<double> seconds_;
        };
        const double begin = threadSeconds();
        auto reader = backend_.openVideo(clip, layout, range, isCancelled);
        *seconds_ += threadSeconds() - begin;
        return std::make_unique<Reader>(std::move(reader), seconds_);
    }
    std::unique_ptr<AudioReader> openAudio(const ImportedClip& clip, SourceRange range,
                                           const CancelCheck& isCancelled) const override {
        return backend_.openAudio(clip, range, isCancelled);
    }
    std::unique_ptr<SeekingReader> openForPlayback(const ImportedClip& clip, PixelLayout layout,
                                                   const CancelCheck& isCancelled) const override {
        return backend_.openForPlayback(clip, layout, isCancelled);
    }
    std::unique_ptr<SoundFileWriter> createSoundFile(OutputFile& output, const AudioSettings& settings) const override {
        return backend_.createSoundFile(output, settings);
    }
    std::unique_ptr<MovieWriter> createMovie(OutputFile& output, FileType fileType,
                                             const CarriedMetadata& metadata) const override {
        return backend_.createMovie(output, fileType, metadata);
    }

private:
    const MediaBackend& backend_;
    std::shared_ptr<double> seconds_ = std::make_shared<double>(0);
};

/// What a method that gives a box for every frame makes of a sequence.
TrackRun finished(const TrackSequence& sequence, std::vector<std::optional<SubjectBox>> boxes) {
    SubjectTrackResult result;
    for (std::size_t i = 0; i < boxes.size(); ++i)
        if (boxes[i]) result.samples.push_back({sequence.timeOf(i), boxes[i]->midX()});
    return {std::move(boxes), result.keyframes(sequence.cropFraction()), 0};
}

class GreyFilter {
public:
    GreyFilter(const SubjectPicture& picture, const SubjectBox& box)
        : box_(PixelBox::of(box, picture)) {
        for (int y = 0; y < gridSide; ++y)
            for (int x = 0; x < gridSide; ++x) {
                const auto hann = [](int i) { return std::pow(std::sin(std::numbers::pi * (i + 0.5) / gridSide), 2); };
                window_.push_back(static_cast<float>(hann(x) * hann(y)));
            }
        constexpr double bell = 2; // cells
        for (int y = 0; y < gridSide; ++y)
            for (int x = 0; x < spectrumColumns; ++x) {
                const auto part = [](int k) {
                    const double turns = 2 * std::numbers::pi * std::min(k, gridSide - k) / gridSide;
                    return std::exp(-0.5 * std::pow(turns * bell, 2));
                };
                label_.push_back(static_cast<float>(part(x) * part(y)));
            }
        look(picture);
        kernels_.learn(spectrum_.data(), label_.data(), 1, numerator_.data(), energy_.data());
    }

    SubjectBox follow(const SubjectPicture& picture) {
        look(picture);
        std::vector<float> answer(2 * spectrumPlaces);
        std::vector<float> response(gridSide * gridSide);
        std::vector<float> other(gridSide * gridSide);
        kernels_.respond(numerator_.data(), energy_.data(), 0.1F, spectrum_.data(), answer.data());
        kernels_.invert(answer.data(), answer.data(), twiddles(), response.data(), other.data());
        const auto peak = std::max_element(response.begin(), response.end()) - response.begin();
        const auto shift = [](std::ptrdiff_t i) { return static_cast<double>(i < gridSide / 2 ? i : i - gridSide); };
        const double cell = SearchWindow::around(box_).cell();
        box_.centerX = std::clamp(box_.centerX + cell * shift(peak % gridSide), 0.0, 1.0 * picture.width());
        box_.centerY = std::clamp(box_.centerY + cell * shift(peak / gridSide), 0.0, 1.0 * picture.height());
        look(picture);
        kernels_.learn(spectrum_.data(), label_.data(), 0.125F, numerator_.data(), energy_.data());
        return box_.asFraction(picture);
    }

private:
    void look(const SubjectPicture& picture) {
        const SearchWindow window = SearchWindow::around(box_);
        const double step = window.cell();
        const SampleGrid grid{window.centerX - window.side / 2 + step / 2, window.centerY - window.side / 2 + step / 2,
                              step, step, gridSide};
        std::vector<float> samples(gridSide * gridSide);
        kernels_.sample(picture.luma[0], grid, samples.data());
        double sum = 0;
        double squares = 0;
        for (float& sample : samples) {
            sample = std::log(1 + sample);
            sum += static_cast<double>(sample);
            squares += static_cast<double>(sample * sample);
        }
        const double mean = sum / static_cast<double>(samples.size());
        const double deviation = std::sqrt(std::max(squares / static_cast<double>(samples.size()) - mean * mean, 1e-6));
        std::vector<float> features(samples.size() * channelCount);
        for (std::size_t i = 0; i < samples.size(); ++i)
            features[i * channelCount] = static_cast<float>((static_cast<double>(samples[i]) - mean) / deviation);
        kernels_.transform(features.data(), window_.data(), twiddles(), spectrum_.data());
    }

    const Kernels& kernels_ = kernelsFor(bestInstructionSet());
    PixelBox box_;
    std::vector<float> window_;
    std::vector<float> label_;
    std::vector<float> spectrum_ = std::vector<float>(spectrumSize);
    std::vector<float> numerator_ = std::vector<float>(spectrumSize);
    std::vector<float> energy_ = std::vector<float>(spectrumPlaces);
};

} // namespace

TrackRun runTracker(const MediaBackend& backend, const TrackSequence& sequence, bool forwards) {
    const TimedBackend timed(backend);
    const std::size_t seed = sequence.seedFrame(forwards);
    TrackRun run;
    run.boxes.resize(sequence.truth.size());
    SubjectTrackingCallbacks callbacks;
    callbacks.sighted = [&](const Sighting& sighting) {
        const std::size_t frame = sequence.frameAt(sighting.time);
        if (frame < run.boxes.size()) run.boxes[frame] = sighting.box;
    };
    const double begin = threadSeconds();
    const SubjectTrackResult result =
        SubjectTrackingEngine(timed).track(sequence.clip, SourceSeconds{sequence.timeOf(seed)}, *sequence.truth[seed],
                                           {0, sequence.clip.duration}, callbacks);
    run.cpuSeconds = threadSeconds() - begin - timed.readingSeconds();
    run.keyframes = result.keyframes(sequence.cropFraction());
    return run;
}

TrackRun runHeldBox(const MediaBackend&, const TrackSequence& sequence, bool forwards) {
    const auto box = sequence.truth[sequence.seedFrame(forwards)];
    return finished(sequence, std::vector<std::optional<SubjectBox>>(sequence.truth.size(), box));
}

TrackRun runGreyFilter(const MediaBackend& backend, const TrackSequence& sequence, bool forwards) {
    const std::size_t seed = sequence.seedFrame(forwards);
    const double time = sequence.timeOf(seed);
    std::vector<std::optional<SubjectBox>> boxes(sequence.truth.size());
    boxes[seed] = sequence.truth[seed];
    const PictureSource source{backend, sequence.clip, {}};
    const auto ahead = walkForwards(source, {time, sequence.clip.duration});
    const auto first = ahead->next();
    if (!first) return finished(sequence, boxes);
    const auto walk = forwards ? nullptr : walkBackwards(source, {0, first->time});
    GreyFilter filter(first->picture, *sequence.truth[seed]);
    while (const auto picture = (walk ? walk : ahead)->next()) {
        const std::size_t frame = sequence.frameAt(picture->time);
        const SubjectBox box = filter.follow(picture->picture);
        if (frame < boxes.size()) boxes[frame] = box;
    }
    return finished(sequence, std::move(boxes));
}

TrackCost trackCost(const MediaBackend& backend, const ImportedClip& clip, const SubjectBox& box, double time) {
    const TimedBackend timed(backend);
    const double begin = threadSeconds();
    const SubjectTrackResult result =
        SubjectTrackingEngine(timed).track(clip, SourceSeconds{time}, box, {0, clip.duration});
    TrackCost cost;
    const double whole = threadSeconds() - begin - timed.readingSeconds();
    const auto reader = backend.openVideo(clip, decodePixelFormat(clip), {0, clip.duration});
    SubjectPictureMaker maker(clip.preferredTransform);
    double reduction = 0;
    while (const auto frame = reader->next()) {
        const double start = threadSeconds();
        if (!maker.make(frame->frame)) break;
        reduction += threadSeconds() - start;
        ++cost.frames;
    }
    cost.whole = 1000 * whole / static_cast<double>(result.samples.size() + result.lostFrames.size());
    cost.reduction = 1000 * reduction / cost.frames;
    return cost;
}

} // namespace flowtide::bench
