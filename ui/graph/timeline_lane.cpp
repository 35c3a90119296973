#include "ui/graph/timeline_lane.h"

#include "core/keyframe_rules.h"
#include "ui/controls/focus_ring.h"
#include "ui/icons.h"
#include "ui/keys_owner.h"
#include "ui/theme.h"

#include <algorithm>

namespace flowtide {

namespace {
constexpr double signLeft = 14;
constexpr double signSize = 16;
} // namespace

TimelineLane::TimelineLane(TimelineContext& context, int top, int laneHeight, QWidget* parent)
    : QWidget(parent)
    , context_(context)
    , top_(top)
    , laneHeight_(laneHeight) {
    setMouseTracking(true);
    connect(&context, &TimelineContext::axisChanged, this, qOverload<>(&QWidget::update));
}

void TimelineLane::takeFocus(double drawnAbove) {
    setFocusPolicy(Qt::TabFocus);
    setKeysOwner(*this, KeysOwner::lane);
    const auto placeRing = [this, drawnAbove] {
        setFocusRing(*this, theme::laneRadius + ringRoom,
                     ground().adjusted(-ringRoom, -drawnAbove, ringRoom, ringRoom));
    };
    connect(&context_, &TimelineContext::axisChanged, this, placeRing);
    placeRing();
}

QRectF TimelineLane::ground() const {
    return {context_.axis().left, static_cast<double>(top_), context_.axis().width, static_cast<double>(laneHeight_)};
}

void TimelineLane::setGround(int top, int laneHeight) {
    top_ = top;
    laneHeight_ = laneHeight;
    update();
}

QRectF TimelineLane::stretch(double from, double to) const {
    const QRectF lane = ground();
    const double left = std::max(context_.axis().xOf(from), lane.left());
    const double right = std::min(context_.axis().xOf(to), lane.right());
    return right > left ? QRectF(left, lane.top(), right - left, lane.height()) : QRectF();
}

void TimelineLane::paintGround(QPainter& painter) const {
    theme::drawBox(painter, ground(), theme::laneRadius, theme::well);
}

void TimelineLane::paintSign(QPainter& painter, const QString& icon, const QRectF& row) const {
    icons::draw(painter, icon, QRectF(signLeft, row.top(), signSize, row.height()), signSize, theme::text2);
}

bool TimelineLane::isTrimmedAtStart() const {
    return context_.trim().lower > KeyframeRules::boundaryMatchTolerance;
}

bool TimelineLane::isTrimmedAtEnd() const {
    return context_.trim().upper < context_.duration() - KeyframeRules::boundaryMatchTolerance;
}

void TimelineLane::paintTrimLines(QPainter& painter) const {
    const auto line = [&](double seconds) {
        if (context_.axis().shows(seconds))
            theme::drawHairline(painter, QRectF(context_.axis().xOf(seconds), 0, 1, height()), theme::Side::left,
                                theme::faded(theme::trim, 0.7));
    };
    if (isTrimmedAtStart()) line(context_.trim().lower);
    if (isTrimmedAtEnd()) line(context_.trim().upper);
}

} // namespace flowtide
