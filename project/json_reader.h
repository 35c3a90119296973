// Reads JSON text straight into stored records.
#pragma once

#include "project/json_place.h"

#include <string_view>

namespace flowtide::json {

/// Reads one value. Throws ProjectError when the text is not strict JSON (trailing bytes, numbers beyond a double,
/// broken UTF-8), names a key twice in an object, nests more than 512 deep, lacks a required key, or holds a value of
/// another type or an unknown name. Keys that are not the record's are skipped; null counts as absent for an optional
/// field. Memory grows with the values kept and the largest number of unknown keys in open objects, not with the text's
/// structure; the stack does not grow with nesting.
void read(std::string_view text, Place place);

/// The same for a record or a list of records.
template <typename Value>
Value decoded(std::string_view text) {
    Value value;
    read(text, placeOf(value));
    return value;
}

} // namespace flowtide::json
