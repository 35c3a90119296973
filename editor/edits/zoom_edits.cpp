// Installs zoom blocks.
#include "editor/edits/zoom_edits.h"

#include "core/clamp.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace flowtide {

namespace {

/// Values as projects hold them.
ZoomBlock storable(ZoomBlock block) {
    block.amount = clamped(block.amount, lowestZoomAmount, highestZoomAmount);
    block.rampDuration = clamped(block.rampDuration, 0, longestZoomRamp);
    block.focalX = clamped(block.focalX, 0, 1);
    block.focalY = clamped(block.focalY, 0, 1);
    for (ZoomFocalKeyframe& keyframe : block.focalKeyframes)
        keyframe = {clamped(keyframe.progress, 0, 1), clamped(keyframe.x, 0, 1), clamped(keyframe.y, 0, 1)};
    if (block.focalKeyframes.size() > mostFocalKeyframes) block.focalKeyframes.resize(mostFocalKeyframes);
    ZoomBlockRules::sortFocalKeyframes(block);
    return block;
}

} // namespace

void ZoomEdits::install(ZoomBlockRules::Blocks blocks) {
    if (blocks == session_.zoom.zoomBlocks()) return;
    session_.recordStep();
    session_.zoom.setZoomBlocks(std::move(blocks));
    session_.scheduleProjectSave();
}

void ZoomEdits::addZoomBlock(SourceRange range) {
    ZoomBlockRules::Blocks blocks = session_.zoom.zoomBlocks();
    if (!session_.clip() || !std::isfinite(range.lower) || !std::isfinite(range.upper) ||
        blocks.size() >= mostZoomBlocks)
        return;
    const auto id = ZoomBlockRules::addInRange(blocks, range, session_.curve.duration());
    if (!id) return;
    install(std::move(blocks));
    session_.zoom.select(id);
}

bool ZoomEdits::canAddOrSelectZoomBlock() const {
    if (!session_.clip()) return false;
    ZoomBlockRules::Blocks blocks = session_.zoom.zoomBlocks();
    return ZoomBlockRules::blockAt(blocks, session_.playheadSeconds()) ||
           (blocks.size() < mostZoomBlocks &&
            ZoomBlockRules::addAtPlayhead(blocks, session_.playheadSeconds(), session_.curve.trimRange(),
                                          session_.curve.duration()));
}

void ZoomEdits::addOrSelectZoomBlock() {
    ZoomBlockRules::Blocks blocks = session_.zoom.zoomBlocks();
    if (!canAddOrSelectZoomBlock()) return;
    if (const ZoomBlock* there = ZoomBlockRules::blockAt(blocks, session_.playheadSeconds())) {
        session_.zoom.select(there->id);
        return;
    }
    const auto id = ZoomBlockRules::addAtPlayhead(blocks, session_.playheadSeconds(), session_.curve.trimRange(),
                                                  session_.curve.duration());
    install(std::move(blocks));
    session_.zoom.select(id);
}

void ZoomEdits::selectZoomBlock(std::optional<Uuid> id) {
    session_.zoom.select(id);
}

void ZoomEdits::moveZoomBlock(const Uuid& id, double start) {
    ZoomBlockRules::Blocks blocks = session_.zoom.zoomBlocks();
    if (std::isfinite(start) && ZoomBlockRules::move(blocks, id, start, wholeClip())) install(std::move(blocks));
}

void ZoomEdits::updateZoomBlock(const ZoomBlock& block) {
    ZoomBlockRules::Blocks blocks = session_.zoom.zoomBlocks();
    if (std::isfinite(block.startTime) && std::isfinite(block.endTime) &&
        ZoomBlockRules::update(blocks, storable(block), wholeClip()))
        install(std::move(blocks));
}

void ZoomEdits::removeZoomBlock(const Uuid& id) {
    ZoomBlockRules::Blocks blocks = session_.zoom.zoomBlocks();
    if (ZoomBlockRules::remove(blocks, id)) install(std::move(blocks));
}

void ZoomEdits::updateZoomFocal(const Uuid& blockID, double x, double y, bool addKeyframe) {
    const ZoomBlock* stored = session_.zoom.block(blockID);
    if (!stored) return;
    ZoomBlock block = *stored;
    if (addKeyframe)
        ZoomBlockRules::setFocalKeyframe(
            block, ZoomBlockRules::progressIn(block, {session_.playheadSeconds()}, session_.curve.timeMap()), x, y);
    else
        ZoomBlockRules::setFocal(block, x, y);
    updateZoomBlock(block);
}

void ZoomEdits::removeFocalKeyframes(const Uuid& blockID) {
    const ZoomBlock* stored = session_.zoom.block(blockID);
    if (!stored) return;
    ZoomBlock block = *stored;
    block.focalKeyframes.clear();
    updateZoomBlock(block);
}

} // namespace flowtide
