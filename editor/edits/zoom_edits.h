// Edits of the zoom blocks.
#pragma once

#include "editor/edit_session.h"

namespace flowtide {

/// Each is one step of history, or part of the open gesture; what changes nothing is none. Times are source seconds,
/// limited to the clip. Without a clip, or for an unknown id, they do nothing.
class ZoomEdits {
public:
    explicit ZoomEdits(EditSession& session)
        : session_(session) {}

    /// Adds a block where the range is free of others and selects it; nothing when too little is free.
    void addZoomBlock(SourceRange range);
    /// Selects the block at the playhead; without one adds a block of a second, within the trim.
    void addOrSelectZoomBlock();
    /// Whether addOrSelectZoomBlock() would find a block or room for one.
    bool canAddOrSelectZoomBlock() const;
    void selectZoomBlock(std::optional<Uuid> id);
    /// Moves a block, its length kept, between its neighbours.
    void moveZoomBlock(const Uuid& id, double start);
    /// Replaces the block of the same id, kept from its neighbours and within the ranges of its values.
    void updateZoomBlock(const ZoomBlock& block);
    void removeZoomBlock(const Uuid& id);
    /// The focal point, fractions of the frame: of the block, or (`addKeyframe`) at the playhead's place in it.
    void updateZoomFocal(const Uuid& blockID, double x, double y, bool addKeyframe);
    void removeFocalKeyframes(const Uuid& blockID);

private:
    void install(ZoomBlockRules::Blocks blocks);
    SourceRange wholeClip() const { return {0, session_.curve.duration()}; }

    EditSession& session_;
};

} // namespace flowtide
