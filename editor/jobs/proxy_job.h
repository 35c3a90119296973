// Builds the small copy of the open clip that the preview plays.
#pragma once

#include "editor/edit_session.h"
#include "editor/jobs/cancel_flag.h"
#include "editor/jobs/session_jobs.h"
#include "editor/jobs/session_media.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace flowtide {

/// Main thread only.
class ProxyJob {
public:
    /// `onBuilt`: proxy() is there.
    ProxyJob(EditSession& session, SessionJobs& jobs, ChangeNotifier& notifier, std::shared_ptr<SessionMedia> media,
             std::function<void()> onBuilt);

    bool isGeneratingProxy() const { return isGeneratingProxy_.get(); }
    double proxyProgress() const { return proxyProgress_.get(); } ///< 0...1
    const std::optional<std::string>& proxyMessage() const { return proxyMessage_.get(); }
    /// The open clip's proxy, once it is built.
    const std::optional<std::filesystem::path>& proxy() const { return proxy_; }

    /// Nothing happens without a clip, or while a proxy is being built.
    void start();
    /// One that waits for another job ends at once.
    void cancel();
    /// Another clip is open from now on.
    void reset();

private:
    void finish(Outcome<std::filesystem::path>& outcome, const OpenClip& clip);

    EditSession& session_;
    SessionJobs& jobs_;
    std::shared_ptr<SessionMedia> media_;
    std::function<void()> onBuilt_;
    Observed<bool> isGeneratingProxy_;
    Observed<double> proxyProgress_;
    Observed<std::optional<std::string>> proxyMessage_;
    std::optional<std::filesystem::path> proxy_;
    std::uint64_t proxyID_ = 0; ///< the outcome of another one is late
    CancelFlag cancelFlag_;
};

} // namespace flowtide
