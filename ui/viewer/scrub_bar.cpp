#include "ui/viewer/scrub_bar.h"

#include "ui/controls/focus_ring.h"
#include "ui/theme.h"
#include "ui/value_text.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QSignalBlocker>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

namespace flowtide {

namespace {

constexpr double trackHeight = 4;
constexpr double rangeHeight = 3;
constexpr double rangeGap = 3;
constexpr QColor track{0xFF, 0xFF, 0xFF, 71};

} // namespace

ScrubBar::ScrubBar(FlowtideViewModel& model, QWidget* parent)
    : QSlider(Qt::Horizontal, parent)
    , model_(model) {
    setAccessibleName(tr("Position in the output"));
    setFocusPolicy(Qt::TabFocus);
    setFocusRing(*this, theme::laneRadius);
    setMouseTracking(true);
    // The accessibility tree changes values too.
    connect(this, &QSlider::valueChanged, this,
            [this](int milliseconds) { scrubTo(OutputSeconds{milliseconds / 1000.0}); });
}

void ScrubBar::refresh() {
    if (!model_.clip()) return;
    const TimeMap& timeMap = model_.curve().timeMap();
    const double now = timeMap.outputTime({model_.playheadSeconds()}).value;
    const QSignalBlocker quiet(*this);
    setRange(0, static_cast<int>(std::min(std::lround(timeMap.outputDuration() * 1000), 2'000'000'000L)));
    setValue(static_cast<int>(std::lround(now * 1000)));
    setAccessibleDescription(valueText::timeCode(now));
    update();
}

double ScrubBar::xOf(double outputSeconds) const {
    const double length = model_.curve().timeMap().outputDuration();
    return knobRadius + (width() - 2.0 * knobRadius) * (length > 0 ? outputSeconds / length : 0);
}

void ScrubBar::paintEvent(QPaintEvent*) {
    if (!model_.clip()) return;
    QPainter painter(this);
    const TimeMap& timeMap = model_.curve().timeMap();
    const double top = (height() - trackHeight) / 2;
    const double now = xOf(timeMap.outputTime({model_.playheadSeconds()}).value);
    const QRectF whole(knobRadius, top, width() - 2.0 * knobRadius, trackHeight);
    theme::drawBox(painter, whole, trackHeight / 2, track);
    theme::drawBox(painter, QRectF(whole.topLeft(), QSizeF(now - whole.left(), trackHeight)), trackHeight / 2,
                   theme::text);
    const auto draw = [&](const SourceRanges& ranges, QColor color) {
        for (const SourceRange& range : ranges) {
            const double left = xOf(timeMap.outputTime({range.lower}).value);
            const double right = xOf(timeMap.outputTime({range.upper}).value);
            const QRectF line(left, top - rangeGap - rangeHeight, right - left, rangeHeight);
            painter.fillRect(theme::onPixels(painter, line), color);
        }
    };
    draw(model_.effectiveOpticalFlowRanges(), theme::faded(theme::flow, 0.45));
    draw(model_.renders().previews().activeRanges(), theme::flow);
    theme::drawBox(painter, QRectF(now - knobRadius, height() / 2.0 - knobRadius, 2 * knobRadius, 2 * knobRadius),
                   knobRadius, theme::playhead);
}

void ScrubBar::scrubTo(double x) {
    const double share = std::clamp((x - knobRadius) / std::max(width() - 2.0 * knobRadius, 1.0), 0.0, 1.0);
    scrubTo(OutputSeconds{share * model_.curve().timeMap().outputDuration()});
}

void ScrubBar::scrubTo(OutputSeconds time) {
    if (!model_.clip() || model_.curve().duration() <= 0) return;
    model_.scrub(model_.curve().timeMap().sourceTime(time).value / model_.curve().duration());
    refresh();
}

void ScrubBar::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    setSliderDown(true);
    scrubTo(event->position().x());
}

void ScrubBar::mouseMoveEvent(QMouseEvent* event) {
    if (isSliderDown()) scrubTo(event->position().x());
}

void ScrubBar::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) setSliderDown(false);
}

void ScrubBar::keyPressEvent(QKeyEvent* event) {
    const int direction = (event->key() == Qt::Key_Right) - (event->key() == Qt::Key_Left);
    if (direction == 0) return event->ignore();
    model_.nudgePlayhead(direction);
    refresh();
}

void ScrubBar::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

} // namespace flowtide
