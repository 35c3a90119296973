#include "ui/viewer/state_chip.h"

#include "ui/accessible_role.h"
#include "ui/session_text.h"
#include "ui/theme.h"
#include "ui/viewer/picture_painter.h"

#include <QPainter>
#include <algorithm>
#include <cmath>
#include <string>

namespace flowtide {

namespace {

std::vector<picturePainter::ChipPart> parts(const PictureState& state) {
    const bool isShuttle = state.dot == PictureState::Dot::none;
    return {{state.words, isShuttle ? theme::Type::smallBold : theme::Type::small, theme::text}};
}

PictureState rangeState(const FlowtideViewModel& model) {
    using Dot = PictureState::Dot;
    const SourceSeconds playhead{model.playheadSeconds()};
    if (OpticalFlowScope::contains(model.renders().previews().flowRanges(), playhead)) {
        const QString label = sessionText(model.renders().playheadLabel().value_or(std::string()));
        const bool isRendered = model.renders().previews().isShownAt(playhead);
        return {label, isRendered || model.renders().render().isRendering() ? Dot::flow : Dot::flowRing};
    }
    const auto& ranges = model.flow().opticalFlowRanges();
    const bool isOff = std::any_of(ranges.begin(), ranges.end(), [&](const OpticalFlowRange& range) {
        return range.start <= playhead.value && playhead.value < range.end;
    });
    return isOff ? PictureState{StateChip::tr("Original frames · Optical Flow off"), Dot::dim} : PictureState{};
}

} // namespace

QString PictureState::shuttle(double rate) {
    if (rate == 0 || rate == 1) return {};
    const QString speed = QStringLiteral("%1x").arg(std::abs(rate));
    return (rate > 0 ? StateChip::tr("%1 forward") : StateChip::tr("%1 backward")).arg(speed);
}

PictureState PictureState::of(const FlowtideViewModel& model) {
    if (const std::string& name = model.clips().isOpening(); !name.empty())
        return {StateChip::tr("Opening %1…").arg(QString::fromStdString(name)), Dot::grey, true};
    if (!model.clip()) return {};
    if (model.transport().isStartingPlayback()) return {StateChip::tr("Preparing playback…"), Dot::grey, true};
    if (const QString words = shuttle(model.transport().shuttleRate());
        model.transport().isPlaying() && !words.isEmpty())
        return {words, Dot::none};
    if (model.tracking().selectingSubject() || model.tracking().isTracking()) return {};
    return rangeState(model);
}

StateChip::StateChip(FlowtideViewModel& model, PictureFeed& feed, QWidget* parent)
    : QWidget(parent)
    , model_(model)
    , feed_(feed) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAccessibleRole(*this, QAccessible::StaticText);
    hide();
    wait_.setSingleShot(true);
    wait_.setInterval(waitMilliseconds);
    connect(&wait_, &QTimer::timeout, this, [this] { show(wanted_); });
    connect(&feed_, &PictureFeed::changed, this, [this] { refresh(); });
    changes_ = model_.subscribe(
        properties({Property::isOpening, Property::clip, Property::isStartingPlayback, Property::isPlaying,
                    Property::shuttleRate, Property::scrubPosition, Property::opticalFlowRanges,
                    Property::originalFrameSpans, Property::frameInterpolation, Property::trimRange,
                    Property::renderedPreviews, Property::renderingPreviewRange, Property::selectingSubject,
                    Property::isTracking, Property::previewRenderError}),
        [this](const PropertySet&) { refresh(); });
    refresh();
}

void StateChip::refresh() {
    PictureState state = PictureState::of(model_);
    if (state.words.isEmpty() && model_.clip()) {
        // Of pictures, then of a start, a render or the sound.
        const std::string failure = feed_.failure();
        const auto& error = model_.renders().render().previewRenderError();
        if (!failure.empty())
            state = {QString::fromStdString(failure), PictureState::Dot::grey};
        else if (error && !failuresAreToldElsewhere_)
            state = {sessionText(*error), PictureState::Dot::grey};
    }
    if (state == wanted_) return;
    wanted_ = state;
    wait_.stop();
    if (state.waits && !shown_.waits)
        wait_.start();
    else
        show(state);
}

void StateChip::setFailuresToldElsewhere(bool areTold) {
    failuresAreToldElsewhere_ = areTold;
    refresh();
}

void StateChip::show(const PictureState& state) {
    shown_ = state;
    setVisible(!state.words.isEmpty());
    setAccessibleName(state.words);
    const double width = picturePainter::chipWidth(parts(state), state.dot != PictureState::Dot::none);
    resize(static_cast<int>(width), static_cast<int>(picturePainter::chipHeight));
    if (onResized) onResized();
    update();
}

void StateChip::setOnPicture(bool isOnPicture) {
    if (isOnPicture_ == isOnPicture) return;
    isOnPicture_ = isOnPicture;
    update();
}

void StateChip::paintEvent(QPaintEvent*) {
    using Dot = PictureState::Dot;
    QPainter painter(this);
    const QColor ground = isOnPicture_ ? theme::pane : theme::raised;
    if (shown_.dot == Dot::none) return picturePainter::drawChip(painter, {0, 0}, parts(shown_), {}, ground);
    const QColor dot = shown_.dot == Dot::grey ? theme::text2 : shown_.dot == Dot::dim ? theme::text3 : theme::flow;
    picturePainter::drawDotChip(painter, {0, 0}, parts(shown_), dot, shown_.dot != Dot::flowRing, ground);
}

} // namespace flowtide
