// Edits of the kept part of the clip.
#pragma once

#include "editor/edit_session.h"

namespace flowtide {

/// What a trim changes.
struct TrimState {
    OpenClip clip;
    SourceRange trim;
    CurveSnapshot edits;
    double timelineZoom = 1;
    double timelineCenter = 0.5;
    double scrubPosition = 0;
    bool loopPreview = false;
    friend bool operator==(const TrimState&, const TrimState&) = default;
};

/// Changed without history. Without a clip they do nothing.
class TrimEdits {
public:
    static constexpr double shortestTrim = 0.001;      ///< source seconds
    static constexpr double boundsTolerance = 0.001;   ///< source seconds beyond the clip's ends that count as the ends
    static constexpr double unchangedTolerance = 1e-6; ///< source seconds

    explicit TrimEdits(EditSession& session)
        : session_(session) {}

    /// Keeps `start`...`end`, source seconds. The speed and the framing at the new ends stay what they were. Ranges
    /// that are too short, or lie outside the clip, change nothing; nor do those whose ends are more points than a
    /// project can hold.
    void applyTrimRange(double start, double end);
    /// The same from what was there `before` a drag that goes on: were each move made from the one before it, the
    /// speed and the framing at the ends would depend on how many there are. Nothing once another clip is open.
    void dragTrim(const TrimState& before, double start, double end);
    /// Keeps the whole clip.
    void resetTrimRange();

    TrimState state() const;
    /// Puts back what was there before a drag that is cancelled. Nothing once another clip is open.
    void restore(const TrimState& before);

private:
    /// From `before`, or, where there is none, from what is there.
    void apply(double start, double end, const TrimState* before);
    void putBack(const TrimState& before);
    /// False when there is no room for the points at the ends.
    bool install(SourceRange trim);
    void keepPlayheadInside(SourceRange trim);

    EditSession& session_;
};

} // namespace flowtide
