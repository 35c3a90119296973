// Something that lies on the picture and can be taken hold of.
#pragma once

#include <QCursor>
#include <QPainter>
#include <QPointF>
#include <QRectF>
#include <Qt>

namespace flowtide {

/// Where the picture lies in its view, device-independent pixels.
struct PicturePlace {
    QRectF picture;       ///< the whole frame
    QRectF crop;          ///< the exported part of it; empty without a crop
    double cropShare = 1; ///< its width as a share of the frame's

    /// What focal points are fractions of.
    const QRectF& frame() const { return crop.isEmpty() ? picture : crop; }
};

/// One kind of thing on the picture. A drag is begin(), drag() for every step and end(); it begins once the pointer has
/// moved far enough not to be a click.
class PictureLayer {
public:
    PictureLayer() = default;
    virtual ~PictureLayer() = default;
    PictureLayer(const PictureLayer&) = delete;
    PictureLayer& operator=(const PictureLayer&) = delete;

    virtual void paint(QPainter& painter, const PicturePlace& place) const = 0;
    /// Whether a press there takes hold of it.
    virtual bool takes(QPointF at, const PicturePlace& place) const = 0;
    virtual Qt::CursorShape cursor(bool isHeld) const { return isHeld ? Qt::ClosedHandCursor : Qt::OpenHandCursor; }
    virtual void begin(QPointF at, Qt::KeyboardModifiers modifiers, const PicturePlace& place) = 0;
    virtual void drag(QPointF at, const PicturePlace& place) = 0;
    /// `isCancelled`: what was dragged goes back to where it was.
    virtual void end(bool isCancelled) = 0;
    /// Moves it by keyboard: `x` and `y` are -1, 0 or 1. False when there is nothing to be moved.
    virtual bool nudge(int x, int y, bool isShifted, const PicturePlace& place) = 0;
};

} // namespace flowtide
