// From the clip to its proxy.
#include "editor/jobs/proxy_job.h"

#include <utility>

namespace flowtide {

ProxyJob::ProxyJob(EditSession& session, SessionJobs& jobs, ChangeNotifier& notifier,
                   std::shared_ptr<SessionMedia> media, std::function<void()> onBuilt)
    : session_(session)
    , jobs_(jobs)
    , media_(std::move(media))
    , onBuilt_(std::move(onBuilt))
    , isGeneratingProxy_(notifier, Property::isGeneratingProxy)
    , proxyProgress_(notifier, Property::proxyProgress)
    , proxyMessage_(notifier, Property::proxyMessage) {}

void ProxyJob::start() {
    const OpenClip clip = session_.clip();
    if (!clip || isGeneratingProxy()) return;
    isGeneratingProxy_.set(true);
    proxyProgress_.set(0);
    proxyMessage_.set("Building 720p preview proxy...");
    const auto onProgress = jobs_.home<double>([this, clip](double fraction) {
        if (clip == session_.clip() && isGeneratingProxy()) proxyProgress_.set(fraction);
    });
    jobs_.start(
        BackgroundQueue::jobs,
        [media = media_, clip, onProgress, isCancelled = cancelFlag_.renewed()] {
            throwIfCancelled(isCancelled);
            return media->makeProxy(*clip, onProgress, isCancelled);
        },
        [this, id = ++proxyID_, clip](Outcome<std::filesystem::path>& outcome) {
            if (id == proxyID_) finish(outcome, clip);
        });
}

void ProxyJob::cancel() {
    if (!cancelFlag_.raise()) return;
    ++proxyID_;
    isGeneratingProxy_.set(false);
    proxyMessage_.set({});
}

void ProxyJob::finish(Outcome<std::filesystem::path>& outcome, const OpenClip& clip) {
    if (clip != session_.clip()) return;
    isGeneratingProxy_.set(false);
    try {
        proxy_ = outcome.get();
        proxyMessage_.set("720p proxy ready");
        onBuilt_();
    } catch (const std::exception& error) {
        proxyMessage_.set(failureToShow(error));
    }
}

void ProxyJob::reset() {
    cancel();
    proxy_.reset();
    isGeneratingProxy_.set(false);
    proxyMessage_.set({});
}

} // namespace flowtide
