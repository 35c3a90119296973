// Colours on a grid say where to look, the tracker looks, strict gates keep others from being taken for the subject.
#include "media/tracking/subject_search.h"

#include "core/clamp.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace flowtide::tracking {

namespace {

constexpr double mostSeedDistance = 0.22;
constexpr double mostRecentDistance = 0.18;
constexpr double mostLastRatio = 0.95; ///< |ln| of the mean side against the last accepted box
constexpr double mostSeedRatio = 1.2;  ///< and against the box that was chosen
constexpr double leastMemory = 0.5;

constexpr double gridStep = 0.35;   ///< of the box
constexpr double mostPlaces = 1500; ///< on the grid: small boxes would take forever
constexpr std::size_t triedPlaces = 6;
constexpr std::size_t refinedPlaces = 2;
constexpr double placeDistance = 0.7;   ///< between two that are tried, of the box
constexpr double velocityHeld = 0.4;    ///< s; who has been gone for longer may have turned
constexpr double leastRadius = 0.08;    ///< frame widths
constexpr double radiusOfBox = 1.5;     ///< of the box's mean side
constexpr double radiusPerSecond = 0.6; ///< frame widths

// The farther off, the more likely it is another one.
constexpr double nearConfidence = 0.35;
constexpr double farConfidence = 0.4; ///< in addition
constexpr double farDistance = 0.25;  ///< frame widths

struct Place {
    double midX;
    double midY;
    double distance; ///< of colours
};

SubjectBox boxAt(double midX, double midY, const SubjectBox& like) {
    return {midX - like.width / 2, midY - like.height / 2, like.width, like.height};
}

double sizeRatio(const SubjectBox& box, const SubjectBox& reference) {
    return std::abs(std::log(std::sqrt(box.area() / reference.area())));
}

/// The places around an expected one whose colours are most alike the subject's, best first.
std::vector<Place> placesLike(const ObjectTracker& tracker, const SubjectPicture& picture, const SubjectBox& expected,
                              double radius) {
    const double aspect = static_cast<double>(picture.width()) / picture.height();
    const double left = std::max(0.0, expected.midX() - radius);
    const double right = std::min(1.0, expected.midX() + radius);
    const double top = std::max(0.0, expected.midY() - radius * aspect);
    const double bottom = std::min(1.0, expected.midY() + radius * aspect);
    if (!(left < right && top < bottom)) return {};
    const double cells = (right - left) * (bottom - top) / (gridStep * gridStep * expected.area());
    const double coarser = std::max(1.0, std::sqrt(cells / mostPlaces));
    const double stepX = gridStep * expected.width * coarser;
    const double stepY = gridStep * expected.height * coarser;

    std::vector<Place> places;
    for (int j = 0; top + j * stepY <= bottom; ++j)
        for (int i = 0; left + i * stepX <= right; ++i) {
            const double x = left + i * stepX;
            const double y = top + j * stepY;
            const double offX = x - expected.midX();
            const double offY = (y - expected.midY()) / aspect;
            if (offX * offX + offY * offY > radius * radius) continue;
            const auto colors = SubjectAppearance::colors(picture, boxAt(x, y, expected));
            places.push_back({x, y,
                              SubjectAppearance::distance(colors, tracker.recentColors()) +
                                  SubjectAppearance::distance(colors, tracker.seedColors())});
        }
    std::stable_sort(places.begin(), places.end(),
                     [](const Place& a, const Place& b) { return a.distance < b.distance; });
    std::vector<Place> best;
    for (const Place& place : places) {
        const bool isNew = std::none_of(best.begin(), best.end(), [&](const Place& other) {
            return std::abs(place.midX - other.midX) < placeDistance * expected.width &&
                   std::abs(place.midY - other.midY) < placeDistance * expected.height;
        });
        if (isNew) best.push_back(place);
        if (best.size() == triedPlaces) break;
    }
    return best;
}

bool isSubject(const ObjectTracker& tracker, const TrackedObject& object, const SubjectBox& expected,
               const SubjectBox& lastBox, double aspect) {
    const double off = std::hypot(object.box.midX() - expected.midX(), (object.box.midY() - expected.midY()) / aspect);
    return object.confidence >= nearConfidence + farConfidence * std::min(1.0, off / farDistance) &&
           object.seedDistance < mostSeedDistance && object.recentDistance < mostRecentDistance &&
           sizeRatio(object.box, lastBox) < mostLastRatio && sizeRatio(object.box, tracker.seedBox()) < mostSeedRatio &&
           object.memory >= leastMemory;
}

} // namespace

std::optional<TrackedObject> findAgain(ObjectTracker& tracker, const SubjectPicture& picture, const LostSubject& lost) {
    const double aspect = static_cast<double>(picture.width()) / picture.height();
    const double held = std::min(lost.lostSeconds, velocityHeld);
    const SubjectBox expected = boxAt(clamped(lost.lastBox.midX() + held * lost.velocityX, 0, 1),
                                      clamped(lost.lastBox.midY() + held * lost.velocityY, 0, 1), lost.lastBox);
    const double side = std::sqrt(expected.area() / aspect); // frame widths
    const double radius = std::max(radiusOfBox * side, leastRadius) + radiusPerSecond * lost.lostSeconds;

    std::vector<SubjectBox> tried{lost.lastBox, expected};
    if (lost.candidate) tried.push_back(*lost.candidate);
    for (const Place& place : placesLike(tracker, picture, expected, radius))
        tried.push_back(boxAt(place.midX, place.midY, expected));

    // Each place is looked at quickly, the most promising ones then with care.
    std::vector<TrackedObject> found;
    for (const SubjectBox& near : tried)
        found.push_back(tracker.locate(picture, near, TrackingLevel::fast));
    std::stable_sort(found.begin(), found.end(),
                     [](const TrackedObject& a, const TrackedObject& b) { return a.confidence > b.confidence; });
    found.resize(std::min(found.size(), refinedPlaces));

    std::optional<TrackedObject> best;
    for (const TrackedObject& rough : found) {
        const TrackedObject object = tracker.locate(picture, rough.box, TrackingLevel::accurate);
        if (isSubject(tracker, object, expected, lost.lastBox, aspect) &&
            (!best || object.confidence > best->confidence))
            best = object;
    }
    return best;
}

} // namespace flowtide::tracking
