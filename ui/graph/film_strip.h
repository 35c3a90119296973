// Pictures of the clip along the time axis.
#pragma once

#include "ui/graph/timeline_context.h"

#include <QImage>
#include <QPainter>
#include <QRectF>
#include <functional>
#include <map>

namespace flowtide {

/// Which pictures a strip consists of: each stands for an equal part of the clip, so that it stays where it is while
/// the axis moves, and parts are halved each time the axis has been magnified twofold.
struct FilmSlots {
    int level = 0;      ///< how often they have been halved
    int count = 1;      ///< in the whole clip
    int first = 0;      ///< in sight
    int last = 0;       ///< in sight
    double seconds = 1; ///< of each

    /// `pictureWidth`: pixels of a whole picture at the strip's height.
    static FilmSlots of(const TimeAxis& axis, double pictureWidth);
    double middle(int slot) const { return (slot + 0.5) * seconds; }
};

class FilmStrip {
public:
    /// `onPicture` is called when there is more to draw.
    FilmStrip(TimelineContext& context, std::function<void()> onPicture);

    /// Another clip: nothing of the one before is shown any more.
    void reset();
    void paint(QPainter& painter, const QRectF& strip);

private:
    struct Key {
        int level;
        int slot;
        friend auto operator<=>(const Key&, const Key&) = default;
    };
    struct Picture {
        PictureLoader::Token token; ///< while it is awaited
        QImage image;
    };
    void want(const FilmSlots& shown, OutputSize size);
    const QImage* pictureFor(Key key) const;

    TimelineContext& context_;
    std::function<void()> onPicture_;
    std::map<Key, Picture> pictures_;
    OutputSize size_;
};

} // namespace flowtide
