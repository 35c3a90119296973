#include "ui/viewer/full_screen_controls.h"

#include "ui/accessible_role.h"
#include "ui/key_names.h"
#include "ui/theme.h"
#include "ui/value_text.h"
#include "ui/viewer/scrub_bar.h"

#include <QEvent>
#include <QLinearGradient>
#include <QPainter>
#include <utility>

namespace flowtide {

namespace {

constexpr int margin = 32;
constexpr int rowHeight = 44;
constexpr int bottomMargin = 20;
constexpr int gap = 4;
constexpr int playDiameter = 40;

} // namespace

FullScreenControls::FullScreenControls(FlowtideViewModel& model, std::function<void(Command)> perform, QWidget* parent)
    : QWidget(parent)
    , model_(model)
    , scrub_(new ScrubBar(model, this)) {
    setMouseTracking(true);
    const auto command = [perform = std::move(perform)](Command wanted) {
        return [perform, wanted] { perform(wanted); };
    };
    center_ = {add(QStringLiteral("jump-start"), tr("Jump to start"), tr("Jump to start (↑)"),
                   command(Command::previousPoint)),
               add(QStringLiteral("frame-back"), tr("Previous output frame"), tr("Previous output frame (←)"),
                   command(Command::previousFrame)),
               add(QStringLiteral("play"), tr("Play"), tr("Play or pause (Space)"), command(Command::playPause)),
               add(QStringLiteral("frame-forward"), tr("Next output frame"), tr("Next output frame (→)"),
                   command(Command::nextFrame)),
               add(QStringLiteral("jump-end"), tr("Jump to end"), tr("Jump to end (↓)"), command(Command::nextPoint))};
    play_ = center_[2];
    play_->setRound(playDiameter);
    loop_ = add(QStringLiteral("loop"), tr("Loop"), tr("Loop this range"),
                [this] { model_.setLoopPreview(!model_.timeline().loopPreview()); });
    mute_ = add(QStringLiteral("sound"), tr("Mute"), {}, [this] { model_.setMuted(!model_.transport().isMuted()); });
    for (IconButton* toggle : {loop_, mute_})
        toggle->setCheckable(true);
    right_ = {mute_, loop_,
              add(QStringLiteral("full-screen-exit"), tr("Leave full screen"),
                  keyNames::local(tr("Leave full screen (⌘F)")), command(Command::fullScreen))};
    scrub_->installEventFilter(this);
    changes_ = model_.subscribe(
        properties({Property::clip, Property::scrubPosition, Property::keyframes, Property::curveSmoothing,
                    Property::trimRange, Property::isPlaying, Property::isStartingPlayback, Property::isMuted,
                    Property::loopPreview, Property::selectedOpticalFlowRangeID, Property::opticalFlowRanges,
                    Property::originalFrameSpans, Property::frameInterpolation, Property::renderedPreviews}),
        [this](const PropertySet&) { refresh(); });
    refresh();
}

IconButton* FullScreenControls::add(const QString& icon, const QString& name, const QString& tip,
                                    std::function<void()> act) {
    auto* button = new IconButton(icon, name, tip, this);
    button->installEventFilter(this);
    connect(button, &IconButton::clicked, this, [this, act = std::move(act)] {
        act();
        refresh();
    });
    return button;
}

bool FullScreenControls::isHeld() const {
    return scrub_->isSliderDown() || scrub_->underMouse();
}

void FullScreenControls::refresh() {
    const bool isPlaying = model_.transport().isPlaying() || model_.transport().isStartingPlayback();
    play_->setIconName(isPlaying ? QStringLiteral("pause") : QStringLiteral("play"));
    setSpokenName(*play_, isPlaying ? tr("Pause") : tr("Play"));
    loop_->setEnabled(model_.clip() && model_.renders().selectedPreviewRange());
    loop_->setChecked(model_.timeline().loopPreview());
    const bool isMuted = model_.transport().isMuted();
    mute_->setEnabled(model_.clip() && model_.clip()->audio);
    mute_->setChecked(isMuted);
    mute_->setIconName(isMuted ? QStringLiteral("mute") : QStringLiteral("sound"));
    mute_->setToolTip(isMuted ? tr("Turn the sound on") : tr("Turn the sound off"));
    if (!isVisible()) return;
    scrub_->refresh();
    update(0, height() - bottomMargin - rowHeight, width() / 2, rowHeight);
}

void FullScreenControls::resizeEvent(QResizeEvent*) {
    const int rowTop = height() - bottomMargin - rowHeight;
    scrub_->setGeometry(margin - ScrubBar::knobRadius, rowTop - ScrubBar::barHeight,
                        width() - 2 * margin + 2 * ScrubBar::knobRadius, ScrubBar::barHeight);
    const auto row = [&](const std::vector<IconButton*>& buttons, int left) {
        for (IconButton* button : buttons) {
            button->move(left, rowTop + (rowHeight - button->height()) / 2);
            left += button->width() + gap;
        }
    };
    const auto length = [](const std::vector<IconButton*>& buttons) {
        int sum = -gap;
        for (const IconButton* button : buttons)
            sum += button->width() + gap;
        return sum;
    };
    row(center_, (width() - length(center_)) / 2);
    row(right_, width() - margin - length(right_));
}

bool FullScreenControls::eventFilter(QObject*, QEvent* event) {
    const bool isTouch = event->type() == QEvent::MouseMove || event->type() == QEvent::MouseButtonPress ||
                         event->type() == QEvent::Enter || event->type() == QEvent::FocusIn;
    if (isTouch && onTouched) onTouched();
    return false;
}

void FullScreenControls::paintEvent(QPaintEvent*) {
    using theme::Type;
    QPainter painter(this);
    QLinearGradient ground(0, 0, 0, height());
    ground.setColorAt(0, theme::faded(Qt::black, 0));
    ground.setColorAt(0.5, theme::faded(Qt::black, 0.78));
    ground.setColorAt(1, theme::faded(Qt::black, 0.9));
    painter.fillRect(rect(), ground);
    if (!model_.clip()) return;
    const double playhead = model_.playheadSeconds();
    const TimeMap& timeMap = model_.curve().timeMap();
    QRectF line(margin, height() - bottomMargin - rowHeight, width() / 2.0, rowHeight);
    const auto write = [&](const QString& words, QColor color) {
        theme::drawLine(painter, line, Qt::AlignLeft, Type::readout, color, words);
        line.setLeft(line.left() + theme::textWidth(Type::readout, words));
    };
    write(valueText::timeCode(timeMap.outputTime({playhead}).value), theme::text);
    write(QStringLiteral(" / ") + valueText::timeCode(timeMap.outputDuration()), theme::text2);
    line.setLeft(line.left() + 20);
    write(valueText::speed(model_.curve().speedAt(playhead)), theme::curve);
}

} // namespace flowtide
