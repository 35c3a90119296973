// Layout and scalars of the JSON text.
#include "project/json_writer.h"

#include "project/base64.h"
#include "project/project_error.h"

#include <nlohmann/json.hpp>

#include <array>
#include <charconv>
#include <cmath>

namespace flowtide::json {
namespace {

constexpr std::size_t indent = 2;
/// More than the shortest text of any double ("-2.2250738585072014e-308" has 24 characters) or 64-bit integer.
constexpr std::size_t longestNumber = 32;

template <typename Number>
void append(std::string& text, Number value) {
    std::array<char, longestNumber> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    text.append(digits.data(), end);
}

} // namespace

void Writer::write(double value) {
    if (!std::isfinite(value)) throw ProjectError::invalid("The project holds a number that cannot be stored.");
    // Readers take "-0" for an integer, which has no negative zero.
    if (value == 0 && std::signbit(value)) {
        text_ += "-0.0";
    } else {
        append(text_, value);
    }
}

void Writer::write(bool value) {
    text_ += value ? "true" : "false";
}

void Writer::write(std::int64_t value) {
    append(text_, value);
}

void Writer::write(std::string_view text) {
    using Json = nlohmann::json;
    text_ += Json(std::string(text)).dump(-1, ' ', false, Json::error_handler_t::replace);
}

void Writer::write(const Uuid& id) {
    writePlain(id.text());
}

void Writer::write(const Bookmark& bookmark) {
    if (!isBase64(bookmark.base64)) throw ProjectError::invalid("The project's bookmark cannot be stored.");
    writePlain(bookmark.base64);
}

std::string Writer::finished() && {
    text_ += '\n';
    return std::move(text_);
}

void Writer::open(char bracket) {
    text_ += bracket;
    ++depth_;
    empty_ = true;
}

void Writer::beginItem() {
    if (!empty_) text_ += ',';
    empty_ = false;
    startLine();
}

void Writer::close(char bracket) {
    --depth_;
    if (!empty_) startLine();
    text_ += bracket;
    empty_ = false;
}

void Writer::startLine() {
    text_ += '\n';
    text_.append(depth_ * indent, ' ');
}

void Writer::writePlain(std::string_view text) {
    text_ += '"';
    text_ += text;
    text_ += '"';
}

} // namespace flowtide::json
