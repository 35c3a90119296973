// What the engine asks of a method that follows one object from picture to picture.
#pragma once

#include "core/subject_box.h"
#include "media/tracking/subject_appearance.h"
#include "media/tracking/subject_picture.h"

#include <memory>

namespace flowtide::tracking {

/// How much is spent on a picture: `fast` follows, `accurate` finds from farther off.
enum class TrackingLevel { fast, accurate };

/// Where a tracker sees its object, and what speaks for it.
struct TrackedObject {
    SubjectBox box;            ///< may reach out of the picture
    double confidence = 0;     ///< 0...1
    double recentDistance = 1; ///< of its colours from how the object looked of late (SubjectAppearance::distance)
    double seedDistance = 1;   ///< and from how it looked when it was chosen
    double memory = 0;         ///< how well it fits what was learnt slowly; 1: as well as of late
    double peak = 0;           ///< of the tracker's own response, for learn()
    double memoryPeak = 0;
};

/// Follows one object, which it was given with its box in one picture. One thread at a time.
class ObjectTracker {
public:
    virtual ~ObjectTracker() = default;
    /// The object as it is seen near a box. Learns nothing.
    virtual TrackedObject locate(const SubjectPicture& picture, const SubjectBox& near, TrackingLevel level) = 0;
    /// Learns how the object looks now, the more the surer it is.
    virtual void learn(const SubjectPicture& picture, const TrackedObject& object) = 0;
    /// A tracker that has learnt the same. Copies share their working memory: they stay on one thread.
    virtual std::unique_ptr<ObjectTracker> copy() const = 0;
    /// How the object looked when it was chosen, and of late.
    virtual const SubjectAppearance& seedColors() const = 0;
    virtual const SubjectAppearance& recentColors() const = 0;
    /// Its box when it was chosen.
    virtual const SubjectBox& seedBox() const = 0;
};

} // namespace flowtide::tracking
