// The clip's sound along the time axis.
#pragma once

#include "editor/jobs/session_jobs.h"
#include "ui/graph/sound_envelope.h"
#include "ui/graph/timeline_context.h"

#include <QPainter>
#include <QRectF>
#include <functional>
#include <memory>

namespace flowtide {

class SoundStrip {
public:
    /// `onEnvelope` is called when there is more to draw.
    SoundStrip(TimelineContext& context, std::function<void()> onEnvelope);

    void paint(QPainter& painter, const QRectF& strip) const;

private:
    void measure();

    TimelineContext& context_;
    std::function<void()> onEnvelope_;
    SessionJobs jobs_;
    std::shared_ptr<const AudioData> measured_;
    SoundEnvelope envelope_;
    Subscription changes_;
};

} // namespace flowtide
