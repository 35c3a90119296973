// Reads marked footage and compares boxes and crops with it.
#include "bench/track_sequences.h"

#include "core/crop_framing.h"
#include "core/crop_plan.h"
#include "media/media_io.h"

#include <algorithm>
#include <cmath>
#include <fstream>

namespace flowtide::bench {

namespace {

std::vector<std::optional<SubjectBox>> readTruth(const std::filesystem::path& path, const ImportedClip& clip) {
    std::vector<std::optional<SubjectBox>> truth;
    std::ifstream file(path);
    std::string line;
    std::getline(file, line);
    while (std::getline(file, line)) {
        double x = 0;
        double y = 0;
        double width = 0;
        double height = 0;
        std::optional<SubjectBox> box;
        const auto w = static_cast<double>(clip.width);
        const auto h = static_cast<double>(clip.height);
        if (std::sscanf(line.c_str(), "%*d,%lf,%lf,%lf,%lf", &x, &y, &width, &height) == 4 && width > 0 && height > 0)
            box = SubjectBox{x / w, y / h, width / w, height / h};
        truth.push_back(box);
    }
    return truth;
}

double intersectionOverUnion(const SubjectBox& a, const SubjectBox& b) {
    const double width = std::min(a.maxX(), b.maxX()) - std::max(a.x, b.x);
    const double height = std::min(a.maxY(), b.maxY()) - std::max(a.y, b.y);
    if (width <= 0 || height <= 0) return 0;
    return width * height / (a.area() + b.area() - width * height);
}

} // namespace

std::size_t TrackSequence::frameAt(double time) const {
    return static_cast<std::size_t>(std::max(0LL, std::llround(time / clip.frameDuration.seconds())));
}

std::size_t TrackSequence::seedFrame(bool forwards) const {
    const auto isVisible = [](const auto& box) { return box.has_value(); };
    return forwards
               ? static_cast<std::size_t>(std::find_if(truth.begin(), truth.end(), isVisible) - truth.begin())
               : static_cast<std::size_t>(truth.rend() - std::find_if(truth.rbegin(), truth.rend(), isVisible)) - 1;
}

double TrackSequence::cropFraction() const {
    return widthOverHeight(CropAspectRatio::nineBySixteen) * static_cast<double>(clip.height) /
           static_cast<double>(clip.width);
}

std::vector<TrackSequence> trackSequences(const MediaBackend& backend, const std::filesystem::path& folder) {
    std::vector<TrackSequence> sequences;
    if (!std::filesystem::is_directory(folder)) return sequences;
    constexpr std::string_view suffix = ".gt.csv";
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        const std::string file = entry.path().filename().string();
        if (!file.ends_with(suffix)) continue;
        const std::string name = file.substr(0, file.size() - suffix.size());
        TrackSequence sequence{name, ImportedClip::load(backend, folder / (name + ".mp4")), {}};
        sequence.truth = readTruth(entry.path(), sequence.clip);
        sequences.push_back(std::move(sequence));
    }
    std::sort(sequences.begin(), sequences.end(), [](const auto& a, const auto& b) { return a.name < b.name; });
    return sequences;
}

void TrackScore::add(const TrackScore& other) {
    for (auto field :
         {&TrackScore::visible, &TrackScore::inside, &TrackScore::accepted, &TrackScore::overlap, &TrackScore::absent,
          &TrackScore::falseBoxes, &TrackScore::wrongBoxes, &TrackScore::keyframes, &TrackScore::seconds,
          &TrackScore::squaredJitter, &TrackScore::jitterCount, &TrackScore::cpuSeconds, &TrackScore::frames})
        this->*field += other.*field;
}

TrackScore score(const TrackSequence& sequence, const TrackRun& run) {
    constexpr int thresholds = 21; // of overlap, 0 to 1
    TrackScore result;
    const double crop = sequence.cropFraction();
    std::vector<double> centers;
    for (std::size_t i = 0; i < sequence.truth.size(); ++i) {
        centers.push_back(crop / 2 + (1 - crop) * cropCenter(run.keyframes, SourceSeconds{sequence.timeOf(i)}));
        const auto& box = run.boxes[i];
        const auto& truth = sequence.truth[i];
        if (!truth) {
            ++result.absent;
            result.falseBoxes += box ? 1 : 0;
            continue;
        }
        ++result.visible;
        result.inside += std::abs(truth->midX() - centers.back()) <= crop / 2 ? 1 : 0;
        if (!box) continue;
        ++result.accepted;
        const double overlap = intersectionOverUnion(*truth, *box);
        result.wrongBoxes += overlap > 0 ? 0 : 1;
        for (int k = 0; k < thresholds; ++k)
            result.overlap += overlap > k / (thresholds - 1.0) ? 1.0 / thresholds : 0;
    }
    for (std::size_t i = 2; i < centers.size(); ++i) {
        const double second = 1920 * (centers[i] - 2 * centers[i - 1] + centers[i - 2]);
        result.squaredJitter += second * second;
        ++result.jitterCount;
    }
    result.keyframes = static_cast<double>(run.keyframes.size());
    result.seconds = sequence.timeOf(sequence.truth.size());
    result.cpuSeconds = run.cpuSeconds;
    result.frames = static_cast<double>(sequence.truth.size());
    return result;
}

} // namespace flowtide::bench
