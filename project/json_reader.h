// Reads JSON text straight into stored records, without a tree of the text: time and memory stay small whatever the
// text is made of.
#pragma once

#include "project/json_fields.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>
#include <vector>

namespace flowtide::json {

/// A value without parts; null apart.
using Scalar = std::variant<bool, double, std::string_view>;

struct FieldType;

/// The field that a value goes to, its type erased; none for the value of an unknown key.
struct FieldReference {
    void* target = nullptr;
    const FieldType* type = nullptr;
    bool isIgnored() const { return type == nullptr; }
};

/// A record's field and its number, from 0.
struct Member {
    FieldReference field;
    std::size_t index = 0;
};

/// What can be done with fields of a type. Functions that do not apply are null.
struct FieldType {
    bool (*assign)(void* target, const Scalar& value) = nullptr; ///< false: not of the field's type
    FieldReference (*makeValue)(void* target) = nullptr;         ///< of an optional field: makes its value
    FieldReference (*appendElement)(void* target) = nullptr;     ///< of a list: appends one
    std::optional<Member> (*findMember)(void* target, std::string_view key) = nullptr;
    /// Of a record: the first required key whose bit in `seen` is not set; empty when there is none.
    std::string_view (*firstMissingKey)(void* target, std::uint64_t seen) = nullptr;
};

/// Whether the value is a `Kind`; then it is in the field.
template <typename Kind, typename Field>
bool assignAs(Field& field, const Scalar& value) {
    const auto* held = std::get_if<Kind>(&value);
    if (held) field = *held;
    return held != nullptr;
}

inline bool assign(bool& field, const Scalar& value) {
    return assignAs<bool>(field, value);
}

inline bool assign(double& field, const Scalar& value) {
    return assignAs<double>(field, value);
}

/// Takes whole numbers however they are written, as 1.0 for 1.
inline bool assign(std::int64_t& field, const Scalar& value) {
    constexpr double limit = 9'007'199'254'740'992; // 2^53: below it a double holds whole numbers exactly
    double number = 0;
    if (!assign(number, value) || !(std::abs(number) < limit) || std::trunc(number) != number) return false;
    field = static_cast<std::int64_t>(number);
    return true;
}

inline bool assign(std::string& field, const Scalar& value) {
    return assignAs<std::string_view>(field, value);
}

inline bool assign(Uuid& field, const Scalar& value) {
    const auto* text = std::get_if<std::string_view>(&value);
    const auto id = text ? Uuid::parse(*text) : std::nullopt;
    if (id) field = *id;
    return id.has_value();
}

inline bool assign(Url& field, const Scalar& value) {
    return assign(field.text, value);
}

/// RFC 4648: the plain alphabet, padded, no line breaks.
constexpr bool isBase64(std::string_view text) {
    constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    if (text.size() % 4 != 0) return false;
    for (int padding = 0; padding < 2 && text.ends_with('='); ++padding)
        text.remove_suffix(1);
    return text.find_first_not_of(alphabet) == std::string_view::npos;
}

inline bool assign(Bookmark& field, const Scalar& value) {
    return assign(field.base64, value) && isBase64(field.base64);
}

inline bool assign(ReferenceDate& field, const Scalar& value) {
    return assign(field.seconds, value);
}

template <typename Enum>
requires std::is_enum_v<Enum>
bool assign(Enum& field, const Scalar& value) {
    const auto* text = std::get_if<std::string_view>(&value);
    if (!text) return false;
    for (const Enum each : allCases(field)) {
        if (rawValue(each) != *text) continue;
        field = each;
        return true;
    }
    return false;
}

template <typename Field>
concept IsScalar = requires(Field& field, const Scalar& value) {
    assign(field, value);
};

template <typename Field>
struct FieldTypeOf;

template <typename Field>
FieldReference referenceTo(Field& field) {
    return {&field, &FieldTypeOf<Field>::table};
}

template <IsScalar Field>
struct FieldTypeOf<Field> {
    static bool assignField(void* target, const Scalar& value) { return assign(*static_cast<Field*>(target), value); }
    static constexpr FieldType table{.assign = assignField};
};

template <typename Item>
struct FieldTypeOf<std::vector<Item>> {
    static FieldReference appendElement(void* target) {
        return referenceTo(static_cast<std::vector<Item>*>(target)->emplace_back());
    }
    static constexpr FieldType table{.appendElement = appendElement};
};

template <typename Field>
struct FieldTypeOf<std::optional<Field>> {
    static FieldReference makeValue(void* target) {
        return referenceTo(static_cast<std::optional<Field>*>(target)->emplace());
    }
    static constexpr FieldType table{.makeValue = makeValue};
};

template <typename Field>
inline constexpr bool isOptional = false;
template <typename Field>
inline constexpr bool isOptional<std::optional<Field>> = true;

template <typename Record>
struct FieldTypeOf {
    static std::optional<Member> findMember(void* target, std::string_view key) {
        std::optional<Member> found;
        std::size_t index = 0;
        describe(*static_cast<Record*>(target), [&](std::string_view name, auto& field) {
            if (name == key) found = Member{referenceTo(field), index};
            ++index;
        });
        return found;
    }
    static std::string_view firstMissingKey(void* target, std::uint64_t seen) {
        std::string_view first;
        std::size_t index = 0;
        describe(*static_cast<Record*>(target), [&]<typename Field>(std::string_view name, Field&) {
            if (!isOptional<Field> && (seen >> index & 1) == 0 && first.empty()) first = name;
            ++index;
        });
        return first;
    }
    static constexpr FieldType table{.findMember = findMember, .firstMissingKey = firstMissingKey};
};

/// Reads one value. Throws ProjectError when the text is not strict JSON (trailing bytes, numbers beyond a double,
/// broken UTF-8), names a key twice in an object, nests more than 512 deep, lacks a required key, or holds a value of
/// another type or an unknown name. Keys that are not the record's are skipped; null counts as absent for an optional
/// field. Memory grows with the values kept and the largest number of unknown keys in open objects, not with the text's
/// structure; the stack does not grow with nesting.
void parse(std::string_view text, FieldReference field);

/// The same for a record or a list of records.
template <typename Value>
Value decoded(std::string_view text) {
    Value value;
    parse(text, referenceTo(value));
    return value;
}

} // namespace flowtide::json
