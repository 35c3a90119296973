#include "ui/graph/trim_handle.h"

#include "ui/accessible_role.h"
#include "ui/controls/focus_ring.h"
#include "ui/keys_owner.h"
#include "ui/theme.h"
#include "ui/value_text.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>

namespace flowtide {

namespace {
constexpr int usualWidth = 10;
constexpr double gripHeight = 12;
constexpr double gripWidth = 2;
constexpr double labelRise = 4; ///< of the time, above the handle
constexpr int tenfold = 10;
} // namespace

TrimHandle::TrimHandle(TimelineContext& context, TrimEnd end, QWidget* parent)
    : QWidget(parent)
    , context_(context)
    , end_(end) {
    setCursor(Qt::SplitHCursor);
    setFocusPolicy(Qt::TabFocus);
    setFocusRing(*this, theme::laneRadius);
    setKeysOwner(*this, KeysOwner::lane);
    setAccessibleRole(*this, QAccessible::Slider);
    setAccessibleName(end == TrimEnd::start ? tr("Trim start") : tr("Trim end"));
}

TrimHandle::~TrimHandle() {
    letGo();
}

double TrimHandle::edge() const {
    return end_ == TrimEnd::start ? context_.trim().lower : context_.trim().upper;
}

void TrimHandle::place(int top, int laneHeight) {
    const double x = context_.axis().xOf(edge());
    const bool isInSight = context_.axis().shows(edge()) || isHeld_;
    setVisible(isInSight && context_.duration() > 0);
    const int left = static_cast<int>(std::round(x)) - (end_ == TrimEnd::start ? widest : 0);
    setGeometry(left, top, widest, laneHeight);
    setAccessibleDescription(valueText::timeCode(edge()));
}

void TrimHandle::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const bool isHot = underMouse() || isHeld_;
    const double shown = isHot ? widest : usualWidth;
    const bool isStart = end_ == TrimEnd::start;
    const QRectF box(isStart ? width() - shown : 0, 0, shown, height());
    // Round where it is outside, straight where the kept part begins.
    QPainterPath path;
    path.addRoundedRect(box, theme::laneRadius, theme::laneRadius);
    path.addRect(isStart ? box.adjusted(box.width() / 2, 0, 0, 0) : box.adjusted(0, 0, -box.width() / 2, 0));
    path.setFillRule(Qt::WindingFill);
    painter.fillPath(path, isHot ? theme::trimHover : theme::trim);
    painter.setRenderHint(QPainter::Antialiasing, false);
    QRectF grip(0, 0, gripWidth, std::min(gripHeight, height() - 4.0));
    grip.moveCenter(box.center());
    painter.fillRect(theme::onPixels(painter, grip), theme::well);
}

void TrimHandle::enterEvent(QEnterEvent*) {
    update();
}

void TrimHandle::leaveEvent(QEvent*) {
    update();
}

void TrimHandle::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return event->ignore();
    isHeld_ = true;
    before_ = context_.model().trimState();
    guard_.begin();
    grip_ = mapToParent(event->position()).x() - context_.axis().xOf(edge());
    context_.holdAxis(true);
    context_.beginLengthChange();
    context_.scrubTo(edge());
    showLabel();
    update();
}

void TrimHandle::mouseMoveEvent(QMouseEvent* event) {
    if (!isHeld_) return;
    trimTo(context_.axis().timeAt(mapToParent(event->position()).x() - grip_));
    showLabel();
}

void TrimHandle::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) letGo();
}

/// No release comes any more.
void TrimHandle::hideEvent(QHideEvent*) {
    letGo();
}

void TrimHandle::letGo() {
    if (!isHeld_) return;
    isHeld_ = false;
    before_.reset();
    guard_.end();
    context_.setTrimLabel({});
    context_.endLengthChange();
    context_.holdAxis(false);
    update();
}

void TrimHandle::cancel() {
    context_.model().restoreTrim(*before_);
    letGo();
}

void TrimHandle::trimTo(double seconds) {
    const auto& clip = context_.model().clip();
    if (!clip) return;
    const double frame = clip->frameDuration.seconds();
    SourceRange trim = context_.trim();
    if (end_ == TrimEnd::start)
        trim.lower = std::clamp(seconds, 0.0, std::max(trim.upper - frame, 0.0));
    else
        trim.upper = std::clamp(seconds, std::min(trim.lower + frame, context_.duration()), context_.duration());
    if (before_)
        context_.model().dragTrim(*before_, trim.lower, trim.upper);
    else
        context_.model().applyTrimRange(trim.lower, trim.upper);
    context_.scrubTo(edge());
}

void TrimHandle::showLabel() {
    const QPointF inParent(context_.axis().xOf(edge()) + (end_ == TrimEnd::start ? -usualWidth : usualWidth) / 2.0,
                           y() - labelRise);
    context_.setTrimLabel(TrimLabel{parentWidget()->mapToParent(inParent.toPoint()), valueText::timeCode(edge())});
}

void TrimHandle::keyPressEvent(QKeyEvent* event) {
    const bool isLeft = event->key() == Qt::Key_Left;
    const auto& clip = context_.model().clip();
    if (!(event->modifiers() & Qt::AltModifier) || (!isLeft && event->key() != Qt::Key_Right) || !clip)
        return event->ignore();
    const int frames = (isLeft ? -1 : 1) * (event->modifiers() & Qt::ShiftModifier ? tenfold : 1);
    trimTo(edge() + frames * clip->frameDuration.seconds());
}

} // namespace flowtide
