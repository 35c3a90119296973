// Drives the JSON library's event parser and hands each value to its place.
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
constexpr std::size_t deepest = 512;

[[noreturn]] void refuse(const std::string& reason) {
    throw ProjectError::invalid("The project file is damaged: " + reason + ".");
}

/// A key of our own for messages; a foreign one may be of any length and content.
std::string inQuotes(std::string_view key) {
    return "\"" + std::string(key) + "\"";
}

class Events {
public:
    explicit Events(Place root)
        : next_(root) {}

    bool null() {
        const Place place = placeForValue();
        // Null stands for the absence of an optional value.
        if (!place.isIgnored() && !place.operations->inner) refuseType();
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
        enter(false);
        return true;
    }
    bool key(const std::string& name) {
        Level& level = levels_.back();
        const auto member =
            level.place.isIgnored() ? std::nullopt : level.place.operations->member(level.place.target, name);
        if (!member) {
            otherKeys_.push_back(name);
            next_ = {};
            return true;
        }
        const std::uint64_t bit = std::uint64_t{1} << member->index;
        if (level.seen & bit) refuse(inQuotes(name) + " occurs twice");
        level.seen |= bit;
        next_ = member->place;
        key_ = name;
        return true;
    }
    bool end_object() {
        const Level level = levels_.back();
        levels_.pop_back();
        if (!level.place.isIgnored()) {
            const auto missing = level.place.operations->missing(level.place.target, level.seen);
            if (!missing.empty()) refuse(inQuotes(missing) + " is missing");
        }
        requireDistinct(level.firstOtherKey);
        return true;
    }

    bool start_array(std::size_t) {
        enter(true);
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
        Place place;
        bool isArray;
        std::size_t firstOtherKey; ///< in otherKeys_
        std::uint64_t seen = 0;    ///< a bit for each own key, by its number
    };

    /// Where the value goes that has just begun.
    Place placeForValue() {
        if (levels_.empty() || !levels_.back().isArray) return next_;
        const Place list = levels_.back().place;
        return list.isIgnored() ? Place{} : list.operations->element(list.target);
    }

    bool scalar(const Scalar& value) {
        Place place = placeForValue();
        if (place.isIgnored()) return true;
        if (place.operations->inner) place = place.operations->inner(place.target);
        if (!place.operations->take || !place.operations->take(place.target, value)) refuseType();
        return true;
    }

    void enter(bool isArray) {
        Place place = placeForValue();
        if (!place.isIgnored() && place.operations->inner) place = place.operations->inner(place.target);
        if (!place.isIgnored() &&
            !(isArray ? place.operations->element != nullptr : place.operations->member != nullptr))
            refuseType();
        if (levels_.size() == deepest) refuse("it nests too deep");
        levels_.push_back({place, isArray, otherKeys_.size()});
    }

    /// Drops the other keys of the object that ends, after making sure that none occurs twice. Sorting keeps this
    /// quick for any choice of keys.
    void requireDistinct(std::size_t firstOtherKey) {
        const auto first = otherKeys_.begin() + static_cast<std::ptrdiff_t>(firstOtherKey);
        std::sort(first, otherKeys_.end());
        if (std::adjacent_find(first, otherKeys_.end()) != otherKeys_.end()) refuse("a key occurs twice");
        otherKeys_.erase(first, otherKeys_.end());
    }

    [[noreturn]] void refuseType() const {
        refuse(key_.empty() ? "it is no such document" : "a value of " + inQuotes(key_) + " has the wrong type");
    }

    Place next_; ///< of the value after a key, and of the whole text
    std::vector<Level> levels_;
    std::vector<std::string> otherKeys_; ///< of the open objects, outermost first
    std::string key_;                    ///< the last own key, for messages
};

} // namespace

void read(std::string_view text, Place place) {
    // The library takes a NUL for the end of the text and would not look at what follows.
    if (text.find('\0') != std::string_view::npos) refuse("it is not valid JSON");
    Events events(place);
    if (!Json::sax_parse(text.begin(), text.end(), &events)) refuse("it is not valid JSON");
}

} // namespace flowtide::json
