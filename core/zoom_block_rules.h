// How zoom blocks are added, changed and kept apart.
#pragma once

#include "core/time.h"
#include "core/time_map.h"
#include "core/zoom_block.h"

#include <optional>
#include <vector>

namespace flowtide::ZoomBlockRules {

using Blocks = std::vector<ZoomBlock>; ///< sorted by start, never overlapping

constexpr double shortestBlock = 0.25;       ///< source seconds
constexpr double newBlockLength = 1;         ///< source seconds, at the playhead
constexpr double focalMatchTolerance = 0.05; ///< of a block's progress; a nearer focal keyframe is replaced

/// The block that contains a source time, ends included.
const ZoomBlock* blockAt(const Blocks& blocks, double time);

/// The part of a range that is free of blocks, within 0...clipDuration; nothing when too little is left for a block.
std::optional<SourceRange> freeRange(const Blocks& blocks, SourceRange range, double clipDuration);

/// Adds a block with default settings in the free part of a range and returns its id; nothing when there is no room.
std::optional<Uuid> addInRange(Blocks& blocks, SourceRange range, double clipDuration);

/// Adds a one-second block at the playhead, within the trim; nothing when there is no room. The caller selects the
/// block that is there already (blockAt) instead, if there is one.
std::optional<Uuid> addAtPlayhead(Blocks& blocks, double playhead, SourceRange trim, double clipDuration);

/// Replaces the block with the same id, its ends limited so that blocks neither overlap nor become too short. `limits`:
/// the timeline. Returns whether anything changed.
bool update(Blocks& blocks, const ZoomBlock& changed, SourceRange limits);

/// Moves a block to a new start, keeping its length, between its neighbours. Returns whether anything changed.
bool move(Blocks& blocks, const Uuid& id, double newStart, SourceRange limits);

/// Returns whether the block was there.
bool remove(Blocks& blocks, const Uuid& id);

/// Puts the focal keyframes in the order in which they are reached.
void sortFocalKeyframes(ZoomBlock& block);

/// Sets the focal point of the whole block.
void setFocal(ZoomBlock& block, double x, double y);
/// Sets the focal point at a position (0...1) in the block: replaces the nearest keyframe within the tolerance, or
/// adds one.
void setFocalKeyframe(ZoomBlock& block, double progress, double x, double y);

/// Where a source time lies in a block, in output time, 0...1.
double progressIn(const ZoomBlock& block, SourceSeconds time, const TimeMap& timeMap);

} // namespace flowtide::ZoomBlockRules
