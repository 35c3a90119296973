// The clip itself: its pictures, its sound, and which part of it is kept.
#pragma once

#include "ui/graph/film_strip.h"
#include "ui/graph/scrub_drag.h"
#include "ui/graph/sound_strip.h"
#include "ui/graph/timeline_lane.h"
#include "ui/graph/trim_handle.h"

namespace flowtide {

/// A press on it scrubs.
class ClipLane final : public TimelineLane {
    Q_OBJECT

public:
    ClipLane(TimelineContext& context, QWidget* parent);

    /// Without both a bar to trim at is left.
    void showRows(bool film, bool sound);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    void placeHandles();
    void paintOutside(QPainter& painter) const;
    void paintFrame(QPainter& painter) const;

    FilmStrip film_;
    SoundStrip sound_;
    TrimHandle* start_;
    TrimHandle* end_;
    bool showsFilm_ = true;
    bool showsSound_ = true;
    ScrubDrag scrub_{context_};
    Subscription changes_;
};

} // namespace flowtide
