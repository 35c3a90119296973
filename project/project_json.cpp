// Writes documents through the JSON library and reads them through our own reader.
#include "project/project_json.h"

#include "project/files/project_error.h"
#include "project/json_fields.h"
#include "project/json_reader.h"
#include "project/project_validation.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <optional>
#include <type_traits>
#include <vector>

namespace flowtide {
namespace {

using Json = nlohmann::json; // keeps its keys sorted

Json toJson(double value) {
    if (!std::isfinite(value)) throw ProjectError::invalid("The project holds a number that cannot be stored.");
    return value;
}
Json toJson(bool value) {
    return value;
}
Json toJson(std::int64_t value) {
    return value;
}
Json toJson(const std::string& text) {
    return text;
}
Json toJson(const Uuid& id) {
    return id.text();
}
Json toJson(const Url& url) {
    return url.text;
}
Json toJson(const Bookmark& bookmark) {
    if (!json::isBase64(bookmark.base64)) throw ProjectError::invalid("The project's bookmark cannot be stored.");
    return bookmark.base64;
}
Json toJson(const ReferenceDate& date) {
    return toJson(date.seconds);
}
template <typename Enum>
requires std::is_enum_v<Enum> Json toJson(Enum value) {
    return rawValue(value);
}

template <typename Item>
Json toJson(const std::vector<Item>& items);

/// A record. Absent values leave no trace.
template <typename Record>
requires std::is_class_v<Record> Json toJson(const Record& record) {
    Json object = Json::object();
    json::describe(record, [&]<typename Field>(const char* key, const Field& field) {
        if constexpr (!json::isOptional<Field>) {
            object.emplace(key, toJson(field));
        } else if (field) {
            object.emplace(key, toJson(*field));
        }
    });
    return object;
}

template <typename Item>
Json toJson(const std::vector<Item>& items) {
    Json list = Json::array();
    for (const Item& item : items)
        list.push_back(toJson(item));
    return list;
}

/// Texts that are no UTF-8, as names of files may be, get U+FFFD in place of the bytes that are wrong.
template <typename Document>
std::string encoded(const Document& document) {
    constexpr int indent = 2;
    return toJson(document).dump(indent, ' ', false, Json::error_handler_t::replace) + '\n';
}

} // namespace

std::string encodeProject(const FlowtideProject& project) {
    validate(project);
    std::string text = encoded(project);
    if (text.size() > maximumProjectBytes) throw ProjectError::invalid("The project is too large to be stored.");
    return text;
}

FlowtideProject decodeProject(std::string_view text) {
    auto project = json::decoded<FlowtideProject>(text);
    validate(project);
    return project;
}

std::string encodeRecentProjects(const RecentProjects& projects) {
    return encoded(projects);
}

RecentProjects decodeRecentProjects(std::string_view text) {
    return json::decoded<RecentProjects>(text);
}

} // namespace flowtide
