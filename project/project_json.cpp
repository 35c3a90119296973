// The documents on top of the JSON reader and writer.
#include "project/project_json.h"

#include "project/json_reader.h"
#include "project/json_writer.h"
#include "project/project_error.h"
#include "project/project_validation.h"

#include <utility>

namespace flowtide {
namespace {

template <typename Document>
std::string encoded(const Document& document) {
    json::Writer writer;
    writer.write(document);
    return std::move(writer).finished();
}

} // namespace

std::string encodeProject(const FlowtideProject& project) {
    validate(project);
    std::string text = encoded(project);
    if (text.size() > largestProjectFile) throw ProjectError::invalid("The project is too large to be stored.");
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
