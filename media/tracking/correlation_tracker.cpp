// Where the filters answer loudest, how sure that is, and what is learnt of it.
#include "media/tracking/correlation_tracker.h"

#include "core/clamp.h"
#include "core/subject_continuity.h"
#include "media/tracking/color_model.h"
#include "media/tracking/scale_filter.h"
#include "media/tracking/search_window.h"
#include "media/tracking/usual_level.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <vector>

namespace flowtide::tracking {

namespace {

constexpr float damping = 0.001F * usedChannels;
constexpr double filterRate = 0.02;
constexpr double memoryRate = 0.002; ///< of the filter that judges whether what was found again is the object
constexpr double colorRate = 0.04;
constexpr double scaleRate = 0.025;
constexpr double recentRate = 0.1;
constexpr float filterShare = 0.7F; ///< of the response; the rest is the colours'
constexpr double firstPeak = 0.4;   ///< in other pictures, of the one in the picture that was learnt
constexpr double mostPeak = 1.3;    ///< of the peak's running mean
// Deviations below the usual peak. What was out of sight for a while may have turned.
constexpr double usualFall = 2;
constexpr double usualFallWhenLost = 2.75;
constexpr double sureConfidence = 0.6;
constexpr int accuratePasses = 2;

constexpr auto cellCount = static_cast<std::size_t>(gridSide * gridSide);

/// The real spectrum of a bell at cell (0, 0), by place.
std::vector<float> labelFor(const PixelBox& box) {
    const double side = SearchWindow::around(box).side;
    const double width = std::max(0.6, gridSide * box.meanSide() / (12 * side)); // standard deviation, cells
    // The bell is a product of two, and so is its spectrum.
    std::vector<double> line(gridSide);
    for (int k = 0; k < gridSide; ++k)
        for (int i = -gridSide / 2; i < gridSide / 2; ++i)
            line[static_cast<std::size_t>(k)] +=
                std::exp(-0.5 * i * i / (width * width)) * std::cos(2 * std::numbers::pi * k * i / gridSide);
    std::vector<float> label;
    for (std::size_t y = 0; y < gridSide; ++y)
        for (std::size_t x = 0; x < spectrumColumns; ++x)
            label.push_back(static_cast<float>(line[y] * line[x]));
    return label;
}

std::vector<float> hannWindow() {
    const auto along = [](int i) { return 0.5 - 0.5 * std::cos(2 * std::numbers::pi * (i + 0.5) / gridSide); };
    std::vector<float> window;
    for (int y = 0; y < gridSide; ++y)
        for (int x = 0; x < gridSide; ++x)
            window.push_back(static_cast<float>(along(y) * along(x)));
    return window;
}

/// What all copies of a tracker need while they work.
struct Workspace {
    std::vector<float> patch = std::vector<float>(static_cast<std::size_t>(patchSide(gridSide) * patchSide(gridSide)));
    std::vector<float> features = std::vector<float>(cellCount * channelCount);
    std::vector<float> spectrum = std::vector<float>(spectrumSize);
    std::vector<float> answer = std::vector<float>(2 * spectrumPlaces);
    std::vector<float> memoryAnswer = std::vector<float>(2 * spectrumPlaces);
    std::vector<float> response = std::vector<float>(cellCount);
    std::vector<float> memoryResponse = std::vector<float>(cellCount);
    std::vector<float> colors;
    const std::vector<float> window = hannWindow();
};

struct Filter {
    std::vector<float> numerator = std::vector<float>(spectrumSize);
    std::vector<float> energy = std::vector<float>(spectrumPlaces);
};

/// The peak of a response whose zero shift is cell (0, 0), at shifts of up to half the window either way.
struct Peak {
    double x = 0; ///< cells
    double y = 0;
};

/// Where a parabola through three values has its top, from the middle one.
double top(float before, float at, float after) {
    const double curvature = static_cast<double>(before) - 2 * static_cast<double>(at) + static_cast<double>(after);
    if (!(curvature < 0)) return 0;
    return clamped(0.5 * (static_cast<double>(before) - static_cast<double>(after)) / curvature, -0.5, 0.5);
}

class CorrelationTracker : public ObjectTracker {
public:
    CorrelationTracker(const SubjectPicture& picture, const SubjectBox& box, InstructionSet instructions)
        : kernels_(&kernelsFor(instructions))
        , workspace_(std::make_shared<Workspace>())
        , seedBox_(box)
        , label_(labelFor(PixelBox::of(box, picture)))
        , seedColors_(SubjectAppearance::colors(picture, box))
        , recentColors_(seedColors_) {
        learnShape(picture, PixelBox::of(box, picture), 1, 1);
        colors_.learn(picture, PixelBox::of(box, picture), 1);
        scale_.learn(*kernels_, picture, PixelBox::of(box, picture), 1);
        // Until other pictures tell, what shows nothing of the object must not pass for usual.
        PixelBox own = PixelBox::of(box, picture);
        meanPeak_ = meanMemoryPeak_ = firstPeak * moveToPeak(picture, own).peak;
    }

    TrackedObject locate(const SubjectPicture& picture, const SubjectBox& near, TrackingLevel level) override {
        PixelBox box = PixelBox::of(near, picture);
        Answer answer;
        for (int pass = 0; pass < (level == TrackingLevel::accurate ? accuratePasses : 1); ++pass) {
            answer = moveToPeak(picture, box);
            resize(picture, box);
        }
        TrackedObject object;
        object.box = box.asFraction(picture);
        const SubjectAppearance colors = SubjectAppearance::colors(picture, object.box);
        object.recentDistance = SubjectAppearance::distance(colors, recentColors_);
        object.seedDistance = SubjectAppearance::distance(colors, seedColors_);
        object.memory = answer.memory / meanMemoryPeak_;
        object.peak = answer.peak;
        object.memoryPeak = answer.memory;
        // Fitted on boxes with and without the object. An answer may be weaker than of late, but hardly weaker than its
        // usual variation explains: then something has begun to hide the object.
        const double peak = clamped(answer.peak / meanPeak_, 0, mostPeak);
        const double usual = level == TrackingLevel::accurate ? usualFallWhenLost : usualFall;
        const double fall = std::max(0.0, usualPeak_.fallTo(answer.peak) - usual);
        object.confidence = 1 / (1 + std::exp(-(9 * peak - 23 * std::sqrt(object.recentDistance) - 5 * fall - 0.62)));
        return object;
    }

    void learn(const SubjectPicture& picture, const TrackedObject& object) override {
        constexpr double least = SubjectTrackingContinuity::lowestConfidence;
        const double gain = clamped((object.confidence - least) / 0.35, 0, 1);
        const PixelBox box = PixelBox::of(object.box, picture);
        learnShape(picture, box, gain * filterRate, gain * memoryRate);
        colors_.learn(picture, box, gain * colorRate);
        scale_.learn(*kernels_, picture, box, gain * scaleRate);
        if (object.confidence < sureConfidence) return;
        meanPeak_ += recentRate * (object.peak - meanPeak_);
        meanMemoryPeak_ += recentRate * (object.memoryPeak - meanMemoryPeak_);
        usualPeak_.add(object.peak);
        recentColors_ = recentColors_.towards(SubjectAppearance::colors(picture, object.box), recentRate);
    }

    std::unique_ptr<ObjectTracker> copy() const override { return std::make_unique<CorrelationTracker>(*this); }
    const SubjectAppearance& seedColors() const override { return seedColors_; }
    const SubjectAppearance& recentColors() const override { return recentColors_; }
    const SubjectBox& seedBox() const override { return seedBox_; }

private:
    struct Answer {
        double peak = 0;   ///< of the filter's response
        double memory = 0; ///< of the slow filter's, at the same place
    };

    void look(const SubjectPicture& picture, const SearchWindow& window) {
        Workspace& w = *workspace_;
        sampleLuma(*kernels_, picture, window.centerX - window.side / 2, window.centerY - window.side / 2, window.side,
                   window.side, gridSide, w.patch.data());
        kernels_->features(w.patch.data(), gridSide, w.features.data());
        kernels_->transform(w.features.data(), w.window.data(), twiddles(), w.spectrum.data());
    }

    Answer moveToPeak(const SubjectPicture& picture, PixelBox& box) {
        Workspace& w = *workspace_;
        const SearchWindow window = SearchWindow::around(box);
        look(picture, window);
        kernels_->respond(filter_.numerator.data(), filter_.energy.data(), damping, w.spectrum.data(), w.answer.data());
        kernels_->respond(memory_.numerator.data(), memory_.energy.data(), damping, w.spectrum.data(),
                          w.memoryAnswer.data());
        kernels_->invert(w.answer.data(), w.memoryAnswer.data(), twiddles(), w.response.data(),
                         w.memoryResponse.data());
        colors_.respond(picture, window, box, w.colors);

        // The colours' response has its zero shift in the middle.
        const auto circular = [](int shift) { return static_cast<std::size_t>((shift + gridSide) % gridSide); };
        const auto filterAt = [&](int x, int y) { return w.response[circular(y) * gridSide + circular(x)]; };
        const auto at = [&](int x, int y) {
            const int column = std::clamp(x + gridSide / 2, 0, gridSide - 1);
            const int row = std::clamp(y + gridSide / 2, 0, gridSide - 1);
            return filterShare * filterAt(x, y) +
                   (1 - filterShare) * w.colors[static_cast<std::size_t>(row * gridSide + column)];
        };
        int bestX = 0;
        int bestY = 0;
        float best = at(0, 0);
        Answer answer;
        for (int y = -gridSide / 2; y < gridSide / 2; ++y)
            for (int x = -gridSide / 2; x < gridSide / 2; ++x) {
                const float value = at(x, y);
                if (value > best) {
                    best = value;
                    bestX = x;
                    bestY = y;
                }
                answer.peak = std::max(answer.peak, static_cast<double>(filterAt(x, y)));
            }
        for (int y = -1; y <= 1; ++y)
            for (int x = -1; x <= 1; ++x)
                answer.memory = std::max(
                    answer.memory,
                    static_cast<double>(w.memoryResponse[circular(bestY + y) * gridSide + circular(bestX + x)]));
        box.centerX += (bestX + top(at(bestX - 1, bestY), best, at(bestX + 1, bestY))) * window.cell();
        box.centerY += (bestY + top(at(bestX, bestY - 1), best, at(bestX, bestY + 1))) * window.cell();
        return answer;
    }

    void resize(const SubjectPicture& picture, PixelBox& box) {
        const double least = 8 / std::min(box.width, box.height); // pixels
        const double most = 1.2 * std::min(picture.width() / box.width, picture.height() / box.height);
        const double factor =
            clamped(scale_.factor(*kernels_, picture, box), std::min(least, 1.0), std::max(most, 1.0));
        box.width *= factor;
        box.height *= factor;
    }

    void learnShape(const SubjectPicture& picture, const PixelBox& box, double rate, double slowRate) {
        look(picture, SearchWindow::around(box));
        const float* spectrum = workspace_->spectrum.data();
        kernels_->learn(spectrum, label_.data(), static_cast<float>(rate), filter_.numerator.data(),
                        filter_.energy.data());
        kernels_->learn(spectrum, label_.data(), static_cast<float>(slowRate), memory_.numerator.data(),
                        memory_.energy.data());
    }

    const Kernels* kernels_;
    std::shared_ptr<Workspace> workspace_;
    SubjectBox seedBox_;
    std::vector<float> label_;
    Filter filter_;
    Filter memory_; ///< learns slowly
    ColorModel colors_;
    ScaleFilter scale_;
    SubjectAppearance seedColors_;
    SubjectAppearance recentColors_;
    UsualLevel usualPeak_;
    double meanPeak_ = 0;
    double meanMemoryPeak_ = 0;
};

} // namespace

std::unique_ptr<ObjectTracker> makeCorrelationTracker(const SubjectPicture& picture, const SubjectBox& box,
                                                      InstructionSet instructions) {
    return std::make_unique<CorrelationTracker>(picture, box, instructions);
}

} // namespace flowtide::tracking
