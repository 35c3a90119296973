#include "ui/graph/coverage_bar.h"

#include "ui/controls/focus_ring.h"
#include "ui/graph/item_steps.h"
#include "ui/graph/timeline_layout.h"
#include "ui/theme.h"

#include <QHelpEvent>
#include <QMouseEvent>
#include <QToolTip>
#include <algorithm>
#include <cmath>
#include <cstring>

namespace flowtide {

namespace {

constexpr double flagWidth = 12;
constexpr double flagHeight = 10;
constexpr double flagRise = 7; ///< above the lane
constexpr double flagRoom = 5; ///< for a flag's ring
constexpr double poleWidth = 2;
constexpr double swallowtail = 3;
constexpr double hitWidth = 20;
constexpr double hitHeight = 24;
constexpr double chevronGap = 6; ///< from the end of what is covered
constexpr double chevronSize = 4;
constexpr double chevronStroke = 1.75;
constexpr int laneTop = CoverageBar::overlap + TimelineLayout::laneAir - TimelineLayout::groundBelowPlot;

Uuid idOf(const CoverageFlag& flag) {
    Uuid id;
    std::memcpy(id.bytes.data(), &flag.time, sizeof flag.time);
    id.bytes.back() = flag.isAfter ? 1 : 0;
    return id;
}

} // namespace

std::vector<CoverageFlag> coverageFlags(const std::vector<SubjectTrackingRange>& ranges) {
    std::vector<CoverageFlag> flags;
    for (const SubjectTrackingRange& range : ranges) {
        if (range.lostBefore) flags.push_back({range.start, range.start, false});
        if (range.lostAfter) flags.push_back({range.end, range.lastFrameTime, true});
    }
    return flags;
}

CoverageBar::CoverageBar(TimelineContext& context, QWidget* parent)
    : TimelineLane(context, laneTop, TimelineLayout::thinLane, parent) {
    takeFocus(flagRise + flagRoom);
    setAccessibleName(tr("Subject tracking coverage"));
    changes_ = context.model().subscribe(
        properties({Property::clip, Property::trackedRanges, Property::trimRange, Property::isTracking,
                    Property::selectingSubject, Property::trackingCoverage, Property::chosenSubject}),
        [this](const PropertySet&) { refresh(); });
    refresh();
}

void CoverageBar::refresh() {
    hovered_ = nullptr;
    unsetCursor();
    flags_ = coverageFlags(context_.model().trackedRanges());
    if (current_ && !current()) current_.reset();
    tree_.changed();
    update();
}

void CoverageBar::paintFlag(QPainter& painter, const CoverageFlag& flag) const {
    if (!context_.axis().shows(flag.time)) return;
    const QRectF lane = ground();
    const double x = context_.axis().xOf(flag.time);
    const double direction = flag.isAfter ? 1 : -1;
    const double grown = &flag == hovered_ ? 1 : 0;
    const QRectF pole(flag.isAfter ? x : x - poleWidth, lane.top() - flagRise, poleWidth, lane.height() + flagRise);
    painter.fillRect(theme::onPixels(painter, pole), theme::attention);
    const double top = lane.top() - flagRise - grown;
    const double end = x + direction * (flagWidth + grown);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme::attention);
    const double bottom = top + flagHeight + grown;
    painter.drawPolygon(QPolygonF{
        {x, top}, {end, top}, {end - direction * swallowtail, (top + bottom) / 2}, {end, bottom}, {x, bottom}});
    painter.restore();
    if (!hasFocus() || current_ != flag) return;
    const QRectF whole(std::min(x, end), lane.top() - flagRise, flagWidth, lane.height() + flagRise);
    constexpr double out = FocusRing::distance + FocusRing::lineWidth;
    theme::drawBox(painter, whole.adjusted(-out, -out, out, out), out, {}, theme::text, FocusRing::lineWidth);
}

void CoverageBar::paintTracked(QPainter& painter, const SourceRange& range) const {
    const QRectF box = stretch(range.lower, range.upper);
    if (!box.isEmpty())
        theme::drawBox(painter, theme::onPixels(painter, box), theme::laneRadius, theme::faded(theme::framing, 0.85));
}

/// Where tracking goes on: forward first, then back from the chosen frame.
void CoverageBar::paintGrowth(QPainter& painter) const {
    const auto& model = context_.model();
    const TrackingJob& tracking = model.tracking();
    const SourceRanges& covered = tracking.trackingCoverage();
    if (covered.empty() || !tracking.chosenSubject() || !tracking.trackingPreview()) return;
    const double frame = model.clip()->frameDuration.seconds();
    const SourceRange trim = model.curve().trimRange();
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(theme::framing, chevronStroke, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    const auto draw = [&](double time, double direction) {
        if (!context_.axis().shows(time)) return;
        const double base = context_.axis().xOf(time) + direction * chevronGap;
        const double middle = ground().center().y();
        painter.drawPolyline(QPolygonF{
            {base, middle - chevronSize}, {base + direction * chevronSize, middle}, {base, middle + chevronSize}});
    };
    if (covered.front().lower > trim.lower + frame) draw(covered.front().lower, -1);
    const bool goesForward = tracking.trackingPreview()->time > tracking.chosenSubject()->time - frame;
    if (goesForward && covered.back().upper < trim.upper - frame) draw(covered.back().upper, 1);
    painter.restore();
}

void CoverageBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect().adjusted(0, overlap, 0, 0), theme::pane);
    paintGround(painter);
    paintSign(painter, QStringLiteral("track"), ground());
    const auto& model = context_.model();
    const auto& ranges = model.trackedRanges();
    for (const SubjectTrackingRange& range : ranges)
        paintTracked(painter, {range.start, range.end});
    const TrackingJob& tracking = model.tracking();
    for (const SourceRange& range : tracking.trackingCoverage())
        paintTracked(painter, range);
    paintGrowth(painter);
    const bool isChoosing = tracking.isTracking() || tracking.selectingSubject();
    if (ranges.empty() && !isChoosing && model.clip())
        theme::drawLine(painter, ground().adjusted(8, 0, -8, 0), Qt::AlignLeft, theme::Type::small, theme::text2,
                        tr("No tracked frames yet. Use Track subject in the Framing inspector."));
    const double chosen = tracking.chosenSubject() ? tracking.chosenSubject()->time : model.playheadSeconds();
    if (isChoosing && context_.axis().shows(chosen)) {
        QPen pen(theme::text, theme::hairlineWidth(painter), Qt::DashLine, Qt::FlatCap);
        painter.setPen(pen);
        const double x = std::round(context_.axis().xOf(chosen)) + theme::hairlineWidth(painter) / 2;
        painter.drawLine(QPointF(x, ground().top()), QPointF(x, ground().bottom()));
    }
    painter.save();
    painter.setClipRect(rect().adjusted(0, overlap, 0, 0));
    paintTrimLines(painter);
    painter.restore();
    for (const CoverageFlag& flag : flags_)
        paintFlag(painter, flag);
}

const CoverageFlag* CoverageBar::flagAt(QPointF place) const {
    const auto hit = std::find_if(flags_.begin(), flags_.end(),
                                  [&](const CoverageFlag& flag) { return hitBox(flag).contains(place); });
    return hit == flags_.end() ? nullptr : &*hit;
}

QRectF CoverageBar::hitBox(const CoverageFlag& flag) const {
    if (!context_.axis().shows(flag.time)) return {};
    const double middle = ground().top() + TimelineLayout::thinLane / 2.0 - flagRise / 2;
    const double center = context_.axis().xOf(flag.time) + (flag.isAfter ? flagWidth : -flagWidth) / 2;
    return {center - hitWidth / 2, middle - hitHeight / 2, hitWidth, hitHeight};
}

const CoverageFlag* CoverageBar::current() const {
    const auto found = current_ ? std::find(flags_.begin(), flags_.end(), *current_) : flags_.end();
    return found == flags_.end() ? nullptr : &*found;
}

QString CoverageBar::sentence(const CoverageFlag& flag) {
    const QString side = flag.isAfter ? tr("Subject lost after %1s. Click to review this frame.")
                                      : tr("Subject lost before %1s. Click to review this frame.");
    return side.arg(flag.time, 0, 'f', 2);
}

void CoverageBar::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    if (const CoverageFlag* flag = flagAt(event->position())) context_.scrubTo(flag->lastFrameTime);
}

void CoverageBar::mouseMoveEvent(QMouseEvent* event) {
    const CoverageFlag* flag = flagAt(event->position());
    context_.setHint(itemSummary());
    if (flag == hovered_) return;
    hovered_ = flag;
    if (flag)
        setCursor(Qt::PointingHandCursor);
    else
        unsetCursor();
    update();
}

void CoverageBar::leaveEvent(QEvent*) {
    context_.setHint({});
    if (!hovered_) return;
    hovered_ = nullptr;
    unsetCursor();
    update();
}

void CoverageBar::keyPressEvent(QKeyEvent* event) {
    const CoverageFlag* flag = current();
    if (const int step = itemStep(*event)) {
        std::vector<double> times;
        for (const CoverageFlag& each : flags_)
            times.push_back(each.time);
        const auto at = flag ? std::optional(static_cast<std::size_t>(flag - flags_.data())) : std::nullopt;
        const auto to = steppedItem(times, at, context_.model().playheadSeconds(), step);
        if (!to) return;
        current_ = flags_[*to];
        context_.reveal(current_->time);
        tree_.currentChanged();
        return update();
    }
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (!isEnter || event->modifiers() & ~Qt::KeypadModifier || !flag) return event->ignore();
    context_.scrubTo(flag->lastFrameTime);
}

void CoverageBar::focusInEvent(QFocusEvent*) {
    tree_.focused();
    update();
}

void CoverageBar::focusOutEvent(QFocusEvent*) {
    update();
}

std::vector<Uuid> CoverageBar::itemIds() const {
    std::vector<Uuid> ids;
    for (const CoverageFlag& flag : flags_)
        ids.push_back(idOf(flag));
    return ids;
}

std::optional<AccessibleItem> CoverageBar::accessibleItem(const Uuid& id, std::size_t index) const {
    if (index >= flags_.size() || idOf(flags_[index]) != id) return {};
    const CoverageFlag& flag = flags_[index];
    return AccessibleItem{sentence(flag), hitBox(flag), current_ == flag, {}};
}

std::optional<Uuid> CoverageBar::currentItem() const {
    return current_ ? std::optional(idOf(*current_)) : std::nullopt;
}

std::optional<Uuid> CoverageBar::itemUnder(QPointF place) const {
    const CoverageFlag* flag = flagAt(place);
    return flag ? std::optional(idOf(*flag)) : std::nullopt;
}

QString CoverageBar::itemSummary() const {
    return tr("Teal: tracked frames. Orange flags: subject lost. Click a flag to go to the last tracked frame. "
              "Uncoloured sections have not been tracked.");
}

void CoverageBar::pressItem(const Uuid& id) {
    for (const CoverageFlag& flag : flags_)
        if (idOf(flag) == id) return context_.scrubTo(flag.lastFrameTime);
}

bool CoverageBar::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip) return TimelineLane::event(event);
    const auto* help = static_cast<QHelpEvent*>(event);
    QString tip;
    if (const CoverageFlag* flag = flagAt(help->pos())) {
        tip = sentence(*flag);
    } else {
        const double seconds = context_.timeAt(help->pos().x());
        for (const SubjectTrackingRange& range : context_.model().trackedRanges())
            if (seconds >= range.start && seconds <= range.end && ground().contains(help->pos()))
                tip = tr("Tracked %1–%2 seconds").arg(range.start, 0, 'f', 2).arg(range.end, 0, 'f', 2);
    }
    if (tip.isEmpty())
        QToolTip::hideText();
    else
        QToolTip::showText(help->globalPos(), tip, this);
    return true;
}

} // namespace flowtide
