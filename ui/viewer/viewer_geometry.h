// Where pictures, crops, targets and boxes lie: arithmetic on values.
#pragma once

#include "core/output_size.h"
#include "core/subject_box.h"
#include "core/zoom_engine.h"

#include <QPointF>
#include <QRectF>
#include <QSize>
#include <QSizeF>

namespace flowtide {

/// What a magnifier shows of a picture.
struct Inspection {
    double scale = 1;         ///< 1: all of it
    QPointF center{0.5, 0.5}; ///< what lies in the middle of the pane, fractions of the picture
    static constexpr double largest = 20;
};

namespace viewerGeometry {

constexpr QRectF wholePicture{0, 0, 1, 1};

/// A picture's size with square pixels, as it is to be looked at. `pixelAspectRatio`: a pixel's width ÷ height.
QSize displayedSize(std::int64_t width, std::int64_t height, double pixelAspectRatio);

/// Where the picture lies in a pane; all in device pixels. `clearance`: what stays free on each side. It stays in the
/// middle in a direction in which the pane has room for it, and else reaches the clearance on both sides.
QRect pictureRect(QSize pane, int clearance, QSize clip, const Inspection& inspection);

/// What a picture of that scale is to be made to fit into, so that it comes in just the size in which it lies there.
OutputSize pictureBox(QSize pane, int clearance, QSize clip, double scale);

/// The scale at which a clip's pixel is `magnification` device pixels wide; at least 1.
double inspectionScale(QSize pane, int clearance, QSize clip, double magnification);
/// The reverse: device pixels of a pixel of the clip.
double magnification(QSize pane, int clearance, QSize clip, double scale);

/// The inspection after the picture was moved by `travel` device pixels.
Inspection panned(QSize pane, int clearance, QSize clip, const Inspection& inspection, QPointF travel);

/// The part of a frame that a zoom shows, fractions of it.
QRectF zoomWindow(const ZoomEngine::ZoomState& zoom);
/// The part that a crop shows: `share` of the width, `travel` 0...1 of its way.
QRectF cropWindow(double travel, double share);

/// A part of a rectangle, given in fractions of it, and back.
QRectF part(const QRectF& whole, const QRectF& fractions);
QPointF point(const QRectF& whole, QPointF fractions);
QPointF fractions(const QRectF& whole, QPointF point);

/// Where the crop is after it was dragged by `distance` on a picture that is `width` wide.
double draggedTravel(double travel, double distance, double width, double share);

/// The box between two corners, limited to the picture; fractions.
SubjectBox boxBetween(QPointF corner, QPointF opposite);
/// The box moved; it stays whole within the picture.
SubjectBox movedBox(SubjectBox box, double dx, double dy);
/// The box grown about its middle; limited to the picture, never smaller than a subject may be.
SubjectBox grownBox(SubjectBox box, double dx, double dy);

/// Where a clip is drawn so that it covers a pane, device pixels; `pan`: 0...1 of what is hidden on each axis.
QRect coveringRect(QSize pane, QSize clip, QPointF pan);
/// What a picture is to be made to fit into so that it covers the pane.
OutputSize coveringBox(QSize pane, QSize clip);
/// The pan after the picture was moved by `travel` device pixels.
QPointF pannedCover(QSize pane, QSize clip, QPointF pan, QPointF travel);

} // namespace viewerGeometry
} // namespace flowtide
