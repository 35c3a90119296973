// The zoom blocks of the open clip.
#pragma once

#include "core/zoom_block_rules.h"
#include "editor/change_notifier.h"

#include <optional>

namespace flowtide {

/// Main thread only.
class ZoomLane {
public:
    explicit ZoomLane(ChangeNotifier& notifier)
        : zoomBlocks_(notifier, Property::zoomBlocks)
        , selectedZoomBlockID_(notifier, Property::selectedZoomBlockID) {}

    const ZoomBlockRules::Blocks& zoomBlocks() const { return zoomBlocks_.get(); }
    const std::optional<Uuid>& selectedZoomBlockID() const { return selectedZoomBlockID_.get(); }
    /// Nothing when no block has the id.
    const ZoomBlock* block(const Uuid& id) const;

    /// Deselects a block that is no longer there.
    void setZoomBlocks(ZoomBlockRules::Blocks blocks);
    /// Nothing, or the id of a block.
    void select(std::optional<Uuid> id);

private:
    Observed<ZoomBlockRules::Blocks> zoomBlocks_;
    Observed<std::optional<Uuid>> selectedZoomBlockID_;
};

} // namespace flowtide
