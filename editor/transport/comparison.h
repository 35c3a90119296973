// The original frame beside the retimed one.
#pragma once

#include "editor/edit_session.h"
#include "editor/jobs/session_jobs.h"
#include "editor/jobs/session_media.h"
#include "editor/preview/render_ahead.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace flowtide {

/// Which frame was wanted, which came, and the output time that shows it.
struct ComparisonFrameTimes {
    SourceSeconds requested;
    SourceSeconds decoded;
    OutputSeconds output;
};

/// The retimed picture is what the player shows at times.output.
struct ComparisonPair {
    DisplayFrame original;
    ComparisonFrameTimes times;
    double pan = 0.5; ///< where the crop is at that time, fraction of its travel; in the middle without a crop
};

/// What the view shows for the playhead.
struct ComparisonDisplayState {
    enum class Picture { none, loading, pair, failed };
    Picture picture = Picture::none;
    std::string label; ///< of the retimed frame; empty outside the Optical Flow ranges
    friend bool operator==(const ComparisonDisplayState&, const ComparisonDisplayState&) = default;
};

/// While it is enabled it follows the playhead, one frame at a time: of those wanted meanwhile the newest waits. Main
/// thread only.
class Comparison {
public:
    Comparison(EditSession& session, SessionJobs& jobs, ChangeNotifier& notifier, std::shared_ptr<SessionMedia> media,
               const RenderAhead& renders);

    bool comparisonEnabled() const { return comparisonEnabled_.get(); }
    /// What is wrong, until it is enabled anew.
    const std::optional<std::string>& comparisonMessage() const { return comparisonMessage_.get(); }
    /// The newest one; null before the first.
    const std::shared_ptr<const ComparisonPair>& comparisonPair() const { return comparisonPair_.get(); }
    std::optional<ComparisonFrameTimes> comparisonFrameTimes() const;
    ComparisonDisplayState comparisonDisplayState() const;

    void setComparisonEnabled(bool enabled);
    /// The largest picture that the view has room for.
    void setComparisonSize(OutputSize size);
    /// Another clip, or none.
    void reset() { setComparisonEnabled(false); }

private:
    void request();
    void receive(Outcome<SourceFrame>& outcome, SourceSeconds requested);
    std::string label() const;

    EditSession& session_;
    SessionJobs& jobs_;
    std::shared_ptr<SessionMedia> media_;
    const RenderAhead& renders_;
    Observed<bool> comparisonEnabled_;
    Observed<std::optional<std::string>> comparisonMessage_;
    Observed<std::shared_ptr<const ComparisonPair>> comparisonPair_;
    OutputSize size_{1920, 1080};
    std::uint64_t comparisonID_ = 0; ///< a result of another one is late
    bool isDecoding_ = false;        ///< for this id
    bool comparisonPending_ = false; ///< the playhead has moved since
    Subscription changes_;           ///< of what a pair tells
};

} // namespace flowtide
