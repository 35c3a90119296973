// Drives the JSON library's event parser and stores each value in its field.
#include "project/json_reader.h"

#include "project/files/project_error.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

namespace flowtide::json {
namespace {

using Json = nlohmann::json;

/// Far above the seven levels of a project; other keys may nest as deep as common readers accept.
constexpr std::size_t maximumDepth = 512;

[[noreturn]] void refuse(const std::string& reason) {
    throw ProjectError::invalid("The project file is damaged: " + reason + ".");
}

/// A key of our own for messages; a foreign one may be of any length and content.
std::string inQuotes(std::string_view key) {
    return "\"" + std::string(key) + "\"";
}

class Events {
public:
    explicit Events(FieldReference root)
        : next_(root) {}

    bool null() {
        const FieldReference field = fieldForValue();
        // Null stands for the absence of an optional value.
        if (!field.isIgnored() && !field.type->makeValue) refuseType();
        return true;
    }
    bool boolean(bool value) { return scalar(value); }
    /// Numbers with a minus. The only zero among them is the negative one, which an integer cannot hold.
    bool number_integer(Json::number_integer_t value) { return scalar(value == 0 ? -0.0 : static_cast<double>(value)); }
    bool number_unsigned(Json::number_unsigned_t value) { return scalar(static_cast<double>(value)); }
    bool number_float(Json::number_float_t value, const std::string&) { return scalar(value); }
    bool string(const std::string& value) { return scalar(std::string_view(value)); }
    bool binary(const Json::binary_t&) { return false; }

    bool start_object(std::size_t) {
        openContainer(false);
        return true;
    }
    bool key(const std::string& name) {
        Level& level = levels_.back();
        const auto member =
            level.field.isIgnored() ? std::nullopt : level.field.type->findMember(level.field.target, name);
        if (!member) {
            unknownKeys_.push_back(name);
            next_ = {};
            return true;
        }
        const std::uint64_t bit = std::uint64_t{1} << member->index;
        if (level.seen & bit) refuse(inQuotes(name) + " occurs twice");
        level.seen |= bit;
        next_ = member->field;
        key_ = name;
        return true;
    }
    bool end_object() {
        const Level level = levels_.back();
        levels_.pop_back();
        if (!level.field.isIgnored()) {
            const auto missing = level.field.type->firstMissingKey(level.field.target, level.seen);
            if (!missing.empty()) refuse(inQuotes(missing) + " is missing");
        }
        requireDistinct(level.firstUnknownKey);
        return true;
    }

    bool start_array(std::size_t) {
        openContainer(true);
        return true;
    }
    bool end_array() {
        levels_.pop_back();
        return true;
    }

    bool parse_error(std::size_t position, const std::string&, const Json::exception&) {
        refuse("it is not valid JSON at byte " + std::to_string(position));
    }

private:
    /// An open object or array.
    struct Level {
        FieldReference field;
        bool isArray;
        std::size_t firstUnknownKey; ///< in unknownKeys_
        std::uint64_t seen = 0;      ///< a bit for each own key, by its number
    };

    /// The field of the value that has just begun.
    FieldReference fieldForValue() {
        if (levels_.empty() || !levels_.back().isArray) return next_;
        const FieldReference list = levels_.back().field;
        return list.isIgnored() ? FieldReference{} : list.type->appendElement(list.target);
    }

    bool scalar(const Scalar& value) {
        FieldReference field = fieldForValue();
        if (field.isIgnored()) return true;
        if (field.type->makeValue) field = field.type->makeValue(field.target);
        if (!field.type->assign || !field.type->assign(field.target, value)) refuseType();
        return true;
    }

    void openContainer(bool isArray) {
        FieldReference field = fieldForValue();
        if (!field.isIgnored() && field.type->makeValue) field = field.type->makeValue(field.target);
        if (!field.isIgnored() && !(isArray ? field.type->appendElement != nullptr : field.type->findMember != nullptr))
            refuseType();
        if (levels_.size() == maximumDepth) refuse("it nests too deep");
        levels_.push_back({field, isArray, unknownKeys_.size()});
    }

    /// Drops the unknown keys of the object that ends, after making sure that none occurs twice. Sorting keeps this
    /// quick for any choice of keys.
    void requireDistinct(std::size_t firstUnknownKey) {
        const auto first = unknownKeys_.begin() + static_cast<std::ptrdiff_t>(firstUnknownKey);
        std::sort(first, unknownKeys_.end());
        if (std::adjacent_find(first, unknownKeys_.end()) != unknownKeys_.end()) refuse("a key occurs twice");
        unknownKeys_.erase(first, unknownKeys_.end());
    }

    [[noreturn]] void refuseType() const {
        refuse(key_.empty() ? "it is no such document" : "a value of " + inQuotes(key_) + " has the wrong type");
    }

    FieldReference next_; ///< of the value after a key, and of the whole text
    std::vector<Level> levels_;
    std::vector<std::string> unknownKeys_; ///< of the open objects, outermost first
    std::string key_;                      ///< the last own key, for messages
};

} // namespace

void parse(std::string_view text, FieldReference field) {
    // The library takes a NUL for the end of the text and would not look at what follows.
    if (text.find('\0') != std::string_view::npos) refuse("it is not valid JSON");
    Events events(field);
    if (!Json::sax_parse(text.begin(), text.end(), &events)) refuse("it is not valid JSON");
}

} // namespace flowtide::json
