#include "ui/viewer/viewer_geometry.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace flowtide::viewerGeometry {

namespace {

QSizeF boxOf(QSize pane, int clearance) {
    return QSizeF(std::max(pane.width() - 2 * clearance, 1), std::max(pane.height() - 2 * clearance, 1));
}

/// Device pixels of a pixel of the clip, when all of it is shown.
double fitScale(QSize pane, int clearance, QSize clip) {
    const QSizeF box = boxOf(pane, clearance);
    return std::min(box.width() / clip.width(), box.height() / clip.height());
}

/// Where a length lies in a pane along one axis.
int placed(int pane, int clearance, int length, double center) {
    if (length <= pane - 2 * clearance) return static_cast<int>(std::lround((pane - length) / 2.0));
    const int wanted = static_cast<int>(std::lround(pane / 2.0 - center * length));
    return std::clamp(wanted, pane - clearance - length, clearance);
}

double shareOf(double amount, double whole) {
    return whole > 0 ? amount / whole : 0;
}

/// Where a length that covers a pane begins along one axis.
int covered(int pane, int length, double pan) {
    return static_cast<int>(std::lround((pane - length) * pan));
}

} // namespace

QSize displayedSize(std::int64_t width, std::int64_t height, double pixelAspectRatio) {
    return {std::max(static_cast<int>(std::lround(static_cast<double>(width) * pixelAspectRatio)), 1),
            static_cast<int>(height)};
}

QRect pictureRect(QSize pane, int clearance, QSize clip, const Inspection& inspection) {
    const double scale = fitScale(pane, clearance, clip) * inspection.scale;
    const QSize size(std::max(static_cast<int>(std::lround(clip.width() * scale)), 1),
                     std::max(static_cast<int>(std::lround(clip.height() * scale)), 1));
    return {placed(pane.width(), clearance, size.width(), inspection.center.x()),
            placed(pane.height(), clearance, size.height(), inspection.center.y()), size.width(), size.height()};
}

OutputSize pictureBox(QSize pane, int clearance, QSize clip, double scale) {
    const QSizeF box = boxOf(pane, clearance);
    // No larger than the clip, but to fill the room.
    const double used = std::min(scale, std::max(1 / fitScale(pane, clearance, clip), 1.0));
    return {std::lround(box.width() * used), std::lround(box.height() * used)};
}

double inspectionScale(QSize pane, int clearance, QSize clip, double magnification) {
    return std::clamp(magnification / fitScale(pane, clearance, clip), 1.0, Inspection::largest);
}

double magnification(QSize pane, int clearance, QSize clip, double scale) {
    return scale * fitScale(pane, clearance, clip);
}

Inspection panned(QSize pane, int clearance, QSize clip, const Inspection& inspection, QPointF travel) {
    const QRect before = pictureRect(pane, clearance, clip, inspection);
    const QPointF middle(pane.width() / 2.0, pane.height() / 2.0);
    // From where it is drawn, which may be less far than where it was asked to be.
    const QPointF shown = fractions(before, middle);
    const QPointF wanted(shown.x() - shareOf(travel.x(), before.width()),
                         shown.y() - shareOf(travel.y(), before.height()));
    const QRect after = pictureRect(pane, clearance, clip, {inspection.scale, wanted});
    const QPointF center = fractions(after, middle);
    return {inspection.scale, {std::clamp(center.x(), 0.0, 1.0), std::clamp(center.y(), 0.0, 1.0)}};
}

QRectF zoomWindow(const ZoomEngine::ZoomState& zoom) {
    const double size = 1 / std::max(zoom.scale, 1.0);
    return {zoom.focal.x * (1 - size), zoom.focal.y * (1 - size), size, size};
}

QRectF cropWindow(double travel, double share) {
    return {travel * (1 - share), 0, share, 1};
}

QRectF part(const QRectF& whole, const QRectF& fractions) {
    return {whole.left() + fractions.left() * whole.width(), whole.top() + fractions.top() * whole.height(),
            fractions.width() * whole.width(), fractions.height() * whole.height()};
}

QPointF point(const QRectF& whole, QPointF fractions) {
    return {whole.left() + fractions.x() * whole.width(), whole.top() + fractions.y() * whole.height()};
}

QPointF fractions(const QRectF& whole, QPointF point) {
    return {shareOf(point.x() - whole.left(), whole.width()), shareOf(point.y() - whole.top(), whole.height())};
}

double draggedTravel(double travel, double distance, double width, double share) {
    return std::clamp(travel + shareOf(distance, width * (1 - share)), 0.0, 1.0);
}

SubjectBox boxBetween(QPointF corner, QPointF opposite) {
    const auto limited = [](double value) { return std::clamp(value, 0.0, 1.0); };
    const double left = limited(std::min(corner.x(), opposite.x()));
    const double top = limited(std::min(corner.y(), opposite.y()));
    return {left, top, limited(std::max(corner.x(), opposite.x())) - left,
            limited(std::max(corner.y(), opposite.y())) - top};
}

SubjectBox movedBox(SubjectBox box, double dx, double dy) {
    box.x = std::clamp(box.x + dx, 0.0, std::max(1 - box.width, 0.0));
    box.y = std::clamp(box.y + dy, 0.0, std::max(1 - box.height, 0.0));
    return box;
}

SubjectBox grownBox(SubjectBox box, double dx, double dy) {
    const double smallest = 2 * smallestSubject;
    const double width = std::clamp(box.width + dx, smallest, 1.0);
    const double height = std::clamp(box.height + dy, smallest, 1.0);
    return movedBox({box.midX() - width / 2, box.midY() - height / 2, width, height}, 0, 0);
}

QRect coveringRect(QSize pane, QSize clip, QPointF pan) {
    const double scale = std::max(shareOf(pane.width(), clip.width()), shareOf(pane.height(), clip.height()));
    const QSize size(std::max(static_cast<int>(std::lround(clip.width() * scale)), pane.width()),
                     std::max(static_cast<int>(std::lround(clip.height() * scale)), pane.height()));
    return {covered(pane.width(), size.width(), pan.x()), covered(pane.height(), size.height(), pan.y()), size.width(),
            size.height()};
}

OutputSize coveringBox(QSize pane, QSize clip) {
    constexpr std::int64_t unlimited = 1 << 20;
    const bool isWider = clip.width() * std::int64_t{pane.height()} > clip.height() * std::int64_t{pane.width()};
    return isWider ? OutputSize{unlimited, pane.height()} : OutputSize{pane.width(), unlimited};
}

QPointF pannedCover(QSize pane, QSize clip, QPointF pan, QPointF travel) {
    const QRect drawn = coveringRect(pane, clip, pan);
    const auto along = [](double from, double distance, int hidden) {
        return hidden > 0 ? std::clamp(from - distance / hidden, 0.0, 1.0) : from;
    };
    return {along(pan.x(), travel.x(), drawn.width() - pane.width()),
            along(pan.y(), travel.y(), drawn.height() - pane.height())};
}

} // namespace flowtide::viewerGeometry
