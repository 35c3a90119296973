// The lane's state.
#include "editor/zoom_lane.h"

#include <algorithm>
#include <utility>

namespace flowtide {

const ZoomBlock* ZoomLane::block(const Uuid& id) const {
    const auto& blocks = zoomBlocks();
    const auto found = std::find_if(blocks.begin(), blocks.end(), [&](const ZoomBlock& each) { return each.id == id; });
    return found == blocks.end() ? nullptr : &*found;
}

void ZoomLane::setZoomBlocks(ZoomBlockRules::Blocks blocks) {
    zoomBlocks_.set(std::move(blocks));
    if (selectedZoomBlockID() && !block(*selectedZoomBlockID())) select({});
}

void ZoomLane::select(std::optional<Uuid> id) {
    selectedZoomBlockID_.set(id && block(*id) ? id : std::nullopt);
}

} // namespace flowtide
