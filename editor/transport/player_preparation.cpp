// The course of a preparation.
#include "editor/transport/player_preparation.h"

#include <utility>

namespace flowtide {

namespace {

constexpr const char* couldNotPrepare = "Preview player could not prepare the requested frame.";

} // namespace

void PlayerPreparation::preparePlayer(OutputSeconds time, Done done) {
    task_ = std::make_shared<Task>(Task{time, std::move(done)});
    timeout_ = Timer(scheduler_, scheduler_.after(timeoutSeconds, [this] {
        finish(task_->isSeeking ? couldNotPrepare : "Preview player did not become ready in time.");
    }));
    if (player_.status() != PlayerStatus::unknown) waitUntilPlayerIsReady();
}

void PlayerPreparation::cancel() {
    task_.reset();
    timeout_.cancel();
}

void PlayerPreparation::statusChanged() {
    if (!task_) return;
    if (!task_->isSeeking)
        waitUntilPlayerIsReady();
    else if (player_.status() != PlayerStatus::ready)
        finish("Preview player stopped being ready while seeking.");
}

void PlayerPreparation::waitUntilPlayerIsReady() {
    switch (player_.status()) {
    case PlayerStatus::ready:
        return seek();
    case PlayerStatus::failed:
        return finish(player_.failureToShow());
    case PlayerStatus::unknown:
        return finish("Preview player reported an unknown status.");
    }
}

void PlayerPreparation::seek() {
    task_->isSeeking = true;
    player_.seek(task_->time, [this, wanted = std::weak_ptr(task_)](bool finished) {
        if (wanted.expired()) return;
        finish(finished ? std::nullopt : std::optional<std::string>(couldNotPrepare));
    });
}

void PlayerPreparation::finish(const std::optional<std::string>& failure) {
    const Done done = std::move(task_->done);
    cancel();
    done(failure);
}

} // namespace flowtide
