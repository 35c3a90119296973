// Whether records that carry an id each have one of their own.
#pragma once

#include "core/uuid.h"

#include <algorithm>
#include <vector>

namespace flowtide {

/// Records have an `id`.
template <typename Record>
bool haveDistinctIDs(const std::vector<Record>& records) {
    std::vector<Uuid> ids;
    ids.reserve(records.size());
    for (const Record& record : records)
        ids.push_back(record.id);
    std::sort(ids.begin(), ids.end());
    return std::adjacent_find(ids.begin(), ids.end()) == ids.end();
}

} // namespace flowtide
