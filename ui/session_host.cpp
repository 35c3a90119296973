#include "ui/session_host.h"

#include "editor/jobs/engine_session_media.h"
#include "ui/key_names.h"

#include <iostream>
#include <string_view>
#include <utility>

namespace flowtide {

namespace {

constexpr int refreshMilliseconds = 16;

void logLine(std::string_view line) {
    // A log that nobody takes ends nothing.
    std::cout << line << '\n' << std::flush;
}

} // namespace

SessionHost::SessionHost(const WindowPlatform& platform, UserSettings& settings)
    : settings_(settings)
    , pictures_(platform.backend)
    , player_({&platform.backend, &clock_, [this](std::function<void()> call) { scheduler_.post(std::move(call)); },
               [this, open = platform.openAudio](AudioFormat format, AudioPull pull) {
                   return open(format, std::move(pull), clock_);
               }})
    , media_(std::make_shared<EngineSessionMedia>(platform.backend, items_, logLine))
    , model_(std::make_unique<FlowtideViewModel>(
          SessionEnvironment{scheduler_, adapter_, media_, std::make_shared<ProjectStore>(),
                             [this] { return settings_.smoothMotionFrameRate(); },
                             keyNames::local(QStringLiteral("⌘Z")).toStdString(), logLine}))
    , pictureFeed_(std::make_unique<PictureFeed>(player_, *model_, pictures_)) {
    refreshes_.setTimerType(Qt::PreciseTimer);
    refreshes_.setInterval(refreshMilliseconds);
    QObject::connect(&refreshes_, &QTimer::timeout, &refreshes_, [this] {
        player_.update();
        if (!player_.isActive()) refreshes_.stop();
    });
    adapter_.onActivity = [this] {
        if (!refreshes_.isActive()) refreshes_.start();
    };
    selectionReset_ = model_->subscribe(properties({Property::clip, Property::editorMode}),
                                        [this](const PropertySet&) { points_.clear(); });
}

SessionHost::~SessionHost() = default;

} // namespace flowtide
