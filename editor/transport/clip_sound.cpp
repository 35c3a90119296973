// One job for each clip.
#include "editor/transport/clip_sound.h"

#include <utility>

namespace flowtide {

ClipSound::ClipSound(SessionJobs& jobs, ChangeNotifier& notifier, std::shared_ptr<SessionMedia> media,
                     Callbacks callbacks)
    : jobs_(jobs)
    , media_(std::move(media))
    , callbacks_(std::move(callbacks))
    , sound_(notifier, Property::clipSound) {}

void ClipSound::load(OpenClip clip) {
    cancelFlag_.raise();
    sound_.set({});
    clip_ = std::move(clip);
    if (!clip_ || !clip_->hasAudio()) return;
    const CancelCheck isCancelled = cancelFlag_.renewed();
    jobs_.start(
        BackgroundQueue::sound,
        [media = media_, clip = clip_, isCancelled] {
            return std::make_shared<const AudioData>(media->loadSound(*clip, isCancelled));
        },
        [this, loaded = clip_](Outcome<std::shared_ptr<const AudioData>>& outcome) {
            if (loaded != clip_) return;
            try {
                sound_.set(outcome.get());
                callbacks_.onArrived();
            } catch (const std::exception& error) {
                if (const auto failure = failureToShow(error)) callbacks_.onFailure(*failure);
            }
        });
}

} // namespace flowtide
