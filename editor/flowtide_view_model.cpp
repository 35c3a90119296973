// Joins the parts.
#include "editor/flowtide_view_model.h"

namespace flowtide {

FlowtideViewModel::FlowtideViewModel(SessionEnvironment environment)
    : notifier_(environment.scheduler)
    , jobs_(environment.scheduler)
    , alert_(notifier_)
    , session_(notifier_, {[this]() -> PreviewControl& { return preview_; }, [this] { binding_.scheduleProjectSave(); },
                           std::move(environment.smoothMotionFrameRate)})
    , binding_(session_, jobs_, notifier_, alert_, std::move(environment.store))
    , export_(session_, jobs_, notifier_, environment.media)
    , proxy_(session_, jobs_, notifier_, environment.media, [this] { preview_.showProxy(); })
    , tracking_(session_, jobs_, notifier_, framingEdits_, environment.media, std::move(environment.undoKeys))
    , import_(session_, jobs_, notifier_, alert_, binding_, environment.media, [this] { clipChanged(); })
    , preview_(session_, jobs_, notifier_, environment.player, environment.media,
               {[this] { return proxy_.proxy(); },
                [this] { return export_.isExporting() || tracking_.isTracking() || tracking_.selectingSubject(); }},
               std::move(environment.log)) {}

FlowtideViewModel::~FlowtideViewModel() {
    preview_.pausePlayback();
    binding_.saveProjectIfPending();
}

void FlowtideViewModel::reset() {
    import_.reset();
}

void FlowtideViewModel::clipChanged() {
    tracking_.cancelTracking();
    proxy_.reset();
    export_.forgetVerification();
}

} // namespace flowtide
