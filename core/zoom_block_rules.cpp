// Finds the room between neighbouring blocks, and fits what is added or changed into it.
#include "core/zoom_block_rules.h"

#include <algorithm>
#include <cmath>

namespace flowtide::ZoomBlockRules {

namespace {

Blocks::iterator find(Blocks& blocks, const Uuid& id) {
    return std::find_if(blocks.begin(), blocks.end(), [&](const ZoomBlock& block) { return block.id == id; });
}

void sortByStart(Blocks& blocks) {
    std::stable_sort(blocks.begin(), blocks.end(),
                     [](const ZoomBlock& a, const ZoomBlock& b) { return a.startTime < b.startTime; });
}

/// The free stretch of the timeline around a block: from the end of the one before to the start of the one after.
SourceRange roomAround(const Blocks& blocks, const ZoomBlock& own, SourceRange limits) {
    SourceRange room = limits;
    for (const ZoomBlock& other : blocks) {
        if (other.id == own.id) continue;
        if (other.startTime < own.startTime)
            room.lower = std::max(room.lower, other.endTime);
        else
            room.upper = std::min(room.upper, other.startTime);
    }
    return room;
}

bool replace(Blocks& blocks, Blocks::iterator stored, const ZoomBlock& changed) {
    if (*stored == changed) return false;
    *stored = changed;
    sortByStart(blocks);
    return true;
}

} // namespace

const ZoomBlock* blockAt(const Blocks& blocks, double time) {
    const auto found = std::find_if(blocks.begin(), blocks.end(), [&](const ZoomBlock& block) {
        return block.startTime <= time && time <= block.endTime;
    });
    return found == blocks.end() ? nullptr : &*found;
}

std::optional<SourceRange> freeRange(const Blocks& blocks, SourceRange range, double clipDuration) {
    double lower = std::max(range.lower, 0.0);
    double upper = std::min(range.upper, clipDuration);
    for (const ZoomBlock& block : blocks) {
        if (!(lower < block.endTime && block.startTime < upper)) continue;
        if (lower >= block.startTime)
            lower = std::max(lower, block.endTime);
        else
            upper = block.startTime;
    }
    if (!(upper - lower >= shortestBlock)) return std::nullopt;
    return SourceRange{lower, upper};
}

std::optional<Uuid> addInRange(Blocks& blocks, SourceRange range, double clipDuration) {
    const auto room = freeRange(blocks, range, clipDuration);
    if (!room) return std::nullopt;
    ZoomBlock block;
    block.id = Uuid::random();
    block.startTime = room->lower;
    block.endTime = room->upper;
    blocks.push_back(block);
    sortByStart(blocks);
    return block.id;
}

std::optional<Uuid> addAtPlayhead(Blocks& blocks, double playhead, SourceRange trim, double clipDuration) {
    const double start = std::max(playhead, trim.lower);
    return addInRange(blocks, {start, std::min(start + newBlockLength, trim.upper)}, clipDuration);
}

bool update(Blocks& blocks, const ZoomBlock& changed, SourceRange limits) {
    const auto stored = find(blocks, changed.id);
    if (stored == blocks.end()) return false;
    const SourceRange room = roomAround(blocks, *stored, limits);
    if (room.upper - room.lower < shortestBlock) return false;
    ZoomBlock fitted = changed;
    fitted.startTime = std::max(std::min(changed.startTime, room.upper - shortestBlock), std::max(room.lower, 0.0));
    // As in move().
    fitted.endTime = std::min(std::max(changed.endTime, fitted.startTime + shortestBlock), room.upper);
    return replace(blocks, stored, fitted);
}

bool move(Blocks& blocks, const Uuid& id, double newStart, SourceRange limits) {
    const auto stored = find(blocks, id);
    if (stored == blocks.end()) return false;
    const double length = stored->endTime - stored->startTime;
    const SourceRange room = roomAround(blocks, *stored, limits);
    if (room.upper - room.lower < length) return false;
    ZoomBlock moved = *stored;
    // Differences and sums are rounded: the last word have the neighbours.
    moved.startTime = std::max(std::min(newStart, room.upper - length), room.lower);
    moved.endTime = std::min(moved.startTime + length, room.upper);
    return replace(blocks, stored, moved);
}

bool remove(Blocks& blocks, const Uuid& id) {
    const auto stored = find(blocks, id);
    if (stored == blocks.end()) return false;
    blocks.erase(stored);
    return true;
}

void setFocal(ZoomBlock& block, double x, double y) {
    block.focalX = std::clamp(x, 0.0, 1.0);
    block.focalY = std::clamp(y, 0.0, 1.0);
}

void setFocalKeyframe(ZoomBlock& block, double progress, double x, double y) {
    const ZoomFocalKeyframe point{std::clamp(progress, 0.0, 1.0), std::clamp(x, 0.0, 1.0), std::clamp(y, 0.0, 1.0)};
    auto& points = block.focalKeyframes;
    const auto distance = [&](const ZoomFocalKeyframe& other) { return std::abs(other.progress - point.progress); };
    const auto nearest = std::min_element(points.begin(), points.end(),
                                          [&](const auto& a, const auto& b) { return distance(a) < distance(b); });
    if (nearest != points.end() && distance(*nearest) <= focalMatchTolerance) {
        nearest->x = point.x;
        nearest->y = point.y;
        return;
    }
    points.push_back(point);
    sortFocalKeyframes(block);
}

void sortFocalKeyframes(ZoomBlock& block) {
    std::stable_sort(block.focalKeyframes.begin(), block.focalKeyframes.end(),
                     [](const auto& a, const auto& b) { return a.progress < b.progress; });
}

double progressIn(const ZoomBlock& block, SourceSeconds time, const TimeMap& timeMap) {
    const double start = timeMap.outputTime(SourceSeconds{block.startTime}).value;
    const double end = timeMap.outputTime(SourceSeconds{block.endTime}).value;
    if (!(end > start)) return 0;
    return std::clamp((timeMap.outputTime(time).value - start) / (end - start), 0.0, 1.0);
}

} // namespace flowtide::ZoomBlockRules
