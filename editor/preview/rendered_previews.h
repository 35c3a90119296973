// The stretches of the open clip that are rendered, and how long each is good for.
#pragma once

#include "editor/edit_session.h"
#include "editor/preview/preview_ranges.h"
#include "media/preview/rendered_preview.h"

#include <filesystem>
#include <vector>

namespace flowtide {

/// Never holds two previews for one source time. Knows their files' names, but touches no file. Main thread only.
class RenderedPreviews {
public:
    RenderedPreviews(const EditSession& session, ChangeNotifier& notifier);

    const std::vector<RenderedPreview>& renderedPreviews() const { return renderedPreviews_.get(); }
    /// Another one whenever the previews have changed; a player that was built at an older one shows what is gone.
    int previewCacheRevision() const { return previewCacheRevision_; }

    /// What the current curve does over a source range.
    PreviewCurveSignature previewSignature(const SourceRange& range) const;
    /// Whether a render of `range` from the curve of `signature` has the current curve's frames.
    bool isValid(const SourceRange& range, const PreviewCurveSignature& signature) const;
    /// Where in-between frames are shown: nowhere while the user has chosen original frames.
    SourceRanges flowRanges() const;
    /// What a player may show now, in order of time.
    std::vector<RenderedPreview> activeCachedPreviews() const;
    /// Their ranges.
    SourceRanges activeRanges() const;
    /// Whether one of them is shown at a time.
    bool isShownAt(SourceSeconds time) const { return OpticalFlowScope::contains(activeRanges(), time); }
    /// What is left to render, in order of time.
    SourceRanges unrenderedRanges() const;
    /// What the curve makes of the open clip. Holds until the next edit; not without a clip.
    RetimedOutput output() const { return {session_.curve.timeMap(), session_.clip()->frameDuration}; }

    /// Takes in a preview of the current curve, in place of what was rendered for its range before.
    void install(RenderedPreview preview);
    /// Cuts what overlaps a range: of each preview the longer part outside of it stays, the earlier one of two alike.
    void trimCachedPreviews(const SourceRange& around);
    /// Drops those that the current curve no longer fits. Whether there were any.
    bool removeInvalid();
    void clear();

    /// Files of dropped previews that a player built at `installedRevision` does not use. Each is given out once.
    std::vector<std::filesystem::path> takeRetired(int installedRevision);

private:
    /// In `retiredPreviewURLs` until nobody plays it.
    struct Retired {
        std::filesystem::path url;
        int revision; ///< the first one without it
    };
    /// What previews must agree with.
    struct Current {
        SpeedKeyframes played;
        double smoothing;
        SourceRanges flowRanges; ///< within the trim

        PreviewCurveSignature signature(const SourceRange& range) const;
        bool fits(const RenderedPreview& preview) const;
    };
    Current current() const;
    bool showsFlow() const { return session_.flow.frameInterpolation() == FrameInterpolation::opticalFlow; }
    void set(std::vector<RenderedPreview> previews);

    const EditSession& session_;
    Observed<std::vector<RenderedPreview>> renderedPreviews_;
    int previewCacheRevision_ = 0;
    std::vector<Retired> retiredPreviewURLs_;
};

} // namespace flowtide
