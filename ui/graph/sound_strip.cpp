#include "ui/graph/sound_strip.h"

#include "ui/theme.h"

#include <QCoreApplication>
#include <algorithm>
#include <cmath>
#include <utility>

namespace flowtide {

namespace {
constexpr double barStep = 2;
constexpr double barWidth = 1.25;
constexpr double loudness = 0.6; ///< exponent: quiet sound is to be seen too
constexpr double quietest = 0.1; ///< a clip that is never louder is drawn as quiet as it is
constexpr double textInset = 8;
} // namespace

SoundStrip::SoundStrip(TimelineContext& context, std::function<void()> onEnvelope)
    : context_(context)
    , onEnvelope_(std::move(onEnvelope))
    , jobs_(context.services().scheduler) {
    changes_ = context.model().subscribe(properties({Property::clipSound, Property::clip}),
                                         [this](const PropertySet&) { measure(); });
    measure();
}

void SoundStrip::measure() {
    const auto& sound = context_.model().clipSound();
    if (sound == measured_) return;
    measured_ = sound;
    envelope_ = {};
    onEnvelope_();
    if (!sound) return;
    jobs_.start(
        BackgroundQueue::sound, [sound, duration = context_.duration()] { return soundEnvelope(*sound, duration); },
        [this, sound](Outcome<SoundEnvelope>& outcome) {
            if (sound != measured_) return;
            envelope_ = std::move(outcome.get());
            onEnvelope_();
        });
}

void SoundStrip::paint(QPainter& painter, const QRectF& strip) const {
    const auto& clip = context_.model().clip();
    if (!clip) return;
    if (!clip->hasAudio())
        return theme::drawLine(painter, strip.adjusted(textInset, 0, 0, 0), Qt::AlignLeft, theme::Type::small,
                               theme::text2, QCoreApplication::translate("SoundStrip", "No audio"));
    const TimeAxis& axis = context_.axis();
    const double loudest = std::max(static_cast<double>(envelope_.loudest), quietest);
    for (double x = strip.left(); x + barStep <= strip.right() + 0.5; x += barStep) {
        const float peak = envelope_.peak(axis.timeAt(x), axis.timeAt(x + barStep));
        if (peak <= 0) continue;
        const double height = std::max(std::pow(peak / loudest, loudness) * strip.height(), 1.0);
        painter.fillRect(theme::onPixels(painter, QRectF(x, strip.bottom() - height, barWidth, height)),
                         theme::fieldHover);
    }
}

} // namespace flowtide
