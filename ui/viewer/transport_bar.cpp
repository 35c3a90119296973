#include "ui/viewer/transport_bar.h"

#include "ui/accessible_role.h"
#include "ui/key_names.h"
#include "ui/theme.h"
#include "ui/value_text.h"
#include "ui/viewer/crop_overlay.h"
#include "ui/viewer/readout.h"

#include <QPainter>
#include <utility>

namespace flowtide {

namespace {

constexpr int padding = 12;
constexpr int readoutGap = 20;
constexpr int buttonGap = 4;
constexpr int playDiameter = 40;

} // namespace

TransportBar::TransportBar(SessionHost& host, std::function<void(Command)> perform, QWidget* parent)
    : TransportBar(host.model(), std::move(perform), parent) {}

TransportBar::TransportBar(FlowtideViewModel& model, std::function<void(Command)> perform, QWidget* parent)
    : QWidget(parent)
    , model_(model)
    , perform_(std::move(perform))
    , source_(new Readout(tr("Source"), theme::text, this))
    , output_(new Readout(tr("Output"), theme::text, this))
    , speed_(new Readout(tr("Speed"), theme::curve, this)) {
    const auto named = [](const QString& tip) { return tip.section(QStringLiteral(" ("), 0, 0); };
    const auto button = [&](const QString& icon, const QString& tip, Command command) {
        return add(icon, named(tip), keyNames::local(tip), command);
    };
    center_ = {button(QStringLiteral("point-previous"), tr("Previous curve point (↑)"), Command::previousPoint),
               button(QStringLiteral("frame-back"), tr("Previous output frame (←)"), Command::previousFrame),
               button(QStringLiteral("play"), tr("Play or pause (Space)"), Command::playPause),
               button(QStringLiteral("frame-forward"), tr("Next output frame (→)"), Command::nextFrame),
               button(QStringLiteral("point-next"), tr("Next curve point (↓)"), Command::nextPoint)};
    play_ = center_[2];
    play_->setRound(playDiameter);
    loop_ = add(QStringLiteral("loop"), tr("Loop"), tr("Loop this range"),
                [this] { model_.setLoopPreview(!model_.timeline().loopPreview()); });
    crop_ = add(QStringLiteral("crop"), tr("Crop"), tr("Toggle the crop (9:16, 1:1, or 4:5)"), Command::toggleCrop);
    compare_ = add(QStringLiteral("compare"), tr("Compare"), tr("Compare original and retimed frames"),
                   [this] { model_.setComparisonEnabled(!model_.comparison().comparisonEnabled()); });
    fullScreen_ = button(QStringLiteral("full-screen"), tr("Full-screen preview (⌘F)"), Command::fullScreen);
    crop_->setOnColor(theme::framing);
    for (IconButton* toggle : {loop_, crop_, compare_})
        toggle->setCheckable(true);
    right_ = {loop_, crop_, compare_, fullScreen_};

    changes_ = model_.subscribe(
        properties({Property::clip, Property::isPlaying, Property::isStartingPlayback, Property::loopPreview,
                    Property::selectedOpticalFlowRangeID, Property::opticalFlowRanges, Property::trimRange,
                    Property::isVerticalCropEnabled, Property::comparisonEnabled}),
        [this](const PropertySet&) { refreshButtons(); });
    times_ = model_.subscribe(properties({Property::clip, Property::scrubPosition, Property::keyframes,
                                          Property::curveSmoothing, Property::trimRange}),
                              [this](const PropertySet&) { refreshTimes(); });
    refreshButtons();
    refreshTimes();
}

IconButton* TransportBar::add(const QString& icon, const QString& name, const QString& tip, std::function<void()> act) {
    auto* button = new IconButton(icon, name, tip, this);
    connect(button, &IconButton::clicked, this, [this, act = std::move(act)] {
        act();
        // A button that was clicked shows what is so, not what was asked for.
        refreshButtons();
    });
    return button;
}

IconButton* TransportBar::add(const QString& icon, const QString& name, const QString& tip, Command command) {
    return add(icon, name, tip, [this, command] { perform_(command); });
}

void TransportBar::refreshTimes() {
    const bool isOpen = model_.clip() != nullptr;
    const double playhead = isOpen ? model_.playheadSeconds() : 0;
    const TimeMap& timeMap = model_.curve().timeMap();
    source_->setValue(valueText::timeCode(playhead));
    output_->setValue(valueText::timeCode(isOpen ? timeMap.outputTime({playhead}).value : 0),
                      QStringLiteral(" / ") + valueText::timeCode(isOpen ? timeMap.outputDuration() : 0));
    speed_->setValue(isOpen ? valueText::speed(model_.curve().speedAt(playhead)) : QString());
    place();
}

void TransportBar::refreshButtons() {
    const bool isOpen = model_.clip() != nullptr;
    for (const auto* group : {&center_, &right_})
        for (IconButton* button : *group)
            button->setEnabled(isOpen);
    const bool isPlaying = model_.transport().isPlaying() || model_.transport().isStartingPlayback();
    play_->setIconName(isPlaying ? QStringLiteral("pause") : QStringLiteral("play"));
    setSpokenName(*play_, isPlaying ? tr("Pause") : tr("Play"));
    loop_->setEnabled(isOpen && model_.renders().selectedPreviewRange());
    loop_->setChecked(model_.timeline().loopPreview());
    crop_->setChecked(model_.framing().isVerticalCropEnabled());
    compare_->setChecked(model_.comparison().comparisonEnabled());
}

void TransportBar::resizeEvent(QResizeEvent*) {
    place();
}

void TransportBar::place() {
    const auto row = [this](const std::vector<IconButton*>& buttons, int from) {
        for (IconButton* button : buttons) {
            button->move(from, (height() - button->height()) / 2);
            from += button->width() + buttonGap;
        }
    };
    const auto length = [](const std::vector<IconButton*>& buttons) {
        int sum = -buttonGap;
        for (const IconButton* button : buttons)
            sum += button->width() + buttonGap;
        return sum;
    };
    const int center = (width() - length(center_)) / 2;
    int left = padding;
    for (Readout* readout : {output_, source_, speed_}) {
        // Times with hours leave less room. The output's, the next one to be read, is the last to go.
        const QSize wanted = readout->sizeHint();
        const bool fits = left + wanted.width() + readoutGap <= center;
        readout->setVisible((readout != speed_ || width() >= speedNeedsWidth) && (readout == output_ || fits));
        if (readout->isHidden()) continue;
        left += wanted.width() + readoutGap;
    }
    left = padding;
    for (Readout* readout : {source_, output_, speed_}) {
        if (readout->isHidden()) continue;
        const QSize wanted = readout->sizeHint();
        readout->setGeometry(left, (height() - wanted.height()) / 2, wanted.width(), wanted.height());
        left += wanted.width() + readoutGap;
    }
    row(center_, center);
    row(right_, width() - padding - length(right_));
}

void TransportBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), theme::pane);
    theme::drawHairline(painter, rect(), theme::Side::top);
}

} // namespace flowtide
