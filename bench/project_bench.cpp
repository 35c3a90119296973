// Loading and saving the largest curve beside the JSON library's bare parse of the same bytes, and the texts that cost
// a reader most for their size.
#include "project/files/project_error.h"
#include "project/flowtide_project.h"
#include "project/project_json.h"
#include "project/project_store.h"
#include "project/project_validation.h"

#include <nlohmann/json.hpp>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace flowtide;

constexpr int runs = 11;

FlowtideProject largeProject() {
    std::mt19937 engine(7);
    const auto uniform = [&engine] { return static_cast<double>(engine()) / 4294967296.0; };
    FlowtideProject project;
    project.id = Uuid::random();
    project.savedAt = ReferenceDate::now();
    project.source = {Url::ofFile("/clips/clip.mov"), {}, std::string(64, 'a'), 3600};
    for (std::size_t i = 0; i < mostKeyframes; ++i)
        project.edits.keyframes.push_back({Uuid::random(), 3600 * uniform(), 0.01 + 99 * uniform()});
    project.edits.centerKeyframes.push_back({Uuid::random(), 0, 0.5});
    project.edits.trimEnd = 3600;
    return project;
}

template <typename Work>
double milliseconds(Work work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

template <typename Work>
double medianMilliseconds(Work work) {
    std::vector<double> times;
    for (int i = 0; i < runs; ++i)
        times.push_back(milliseconds(work));
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

std::string repeated(const std::string& start, const std::string& item, const std::string& end) {
    std::string text = start;
    while (text.size() + item.size() + end.size() <= maximumProjectBytes)
        text += item;
    return text + end;
}

/// An object in which no key occurs twice.
std::string distinctKeys() {
    std::string text = "{";
    for (int i = 0; text.size() + 20 < maximumProjectBytes; ++i)
        text += "\"" + std::to_string(i) + "\":0,";
    return text + "\"\":0}";
}

struct Cost {
    double milliseconds;
    double megabytes; ///< the process's peak
};

/// In a process of its own, so that the peak is this text's.
Cost costOf(const std::string& text) {
    int channel[2];
    if (::pipe(channel) != 0) return {};
    const pid_t child = ::fork();
    if (child == 0) {
        const double time = milliseconds([&] {
            try {
                decodeProject(text);
            } catch (const ProjectError&) {
                // Refused, as most of these texts are.
            }
        });
        const bool sent = ::write(channel[1], &time, sizeof time) == sizeof time;
        ::_exit(sent ? 0 : 1);
    }
    double time = 0;
    const bool received = ::read(channel[0], &time, sizeof time) == sizeof time;
    rusage usage{};
    ::wait4(child, nullptr, 0, &usage);
    ::close(channel[0]);
    ::close(channel[1]);
    return {received ? time : -1, static_cast<double>(usage.ru_maxrss) / 1024};
}

} // namespace

int main() {
    const FlowtideProject project = largeProject();
    const std::string text = encodeProject(project);
    const auto folder = std::filesystem::temp_directory_path() / ("flowtide-bench-" + Uuid::random().text());
    ProjectStore store(folder);
    store.save(project);
    const auto file = store.projectFile(project.id);

    const double parse = medianMilliseconds([&] { const auto tree = nlohmann::json::parse(text); });
    const double load = medianMilliseconds([&] { ProjectStore::load(file); });
    const double encode = medianMilliseconds([&] { encodeProject(project); });
    const double save = medianMilliseconds([&] { store.save(project); });
    std::filesystem::remove_all(folder);

    std::printf("project: %zu keyframes, %.1f MB, median of %d runs\n", project.edits.keyframes.size(),
                static_cast<double>(text.size()) / 1e6, runs);
    std::printf("  JSON library's parse alone %8.2f ms   (nlohmann %d.%d.%d)\n", parse, NLOHMANN_JSON_VERSION_MAJOR,
                NLOHMANN_JSON_VERSION_MINOR, NLOHMANN_JSON_VERSION_PATCH);
    std::printf("  load                       %8.2f ms   load / parse   = %.2f\n", load, load / parse);
    std::printf("  encode                     %8.2f ms   encode / parse = %.2f\n", encode, encode / parse);
    std::printf("  save, flushed to the disk  %8.2f ms   save / parse   = %.2f\n", save, save / parse);

    const std::string point = R"({"progress":0,"x":0,"y":0},)";
    const std::vector<std::pair<const char*, std::function<std::string()>>> worst{
        {"distinct unknown keys", distinctKeys},
        {"empty arrays", [&] { return repeated("{\"a\":[", "[],", "0]}"); }},
        {"numbers", [&] { return repeated("{\"a\":[", "0,", "0]}"); }},
        {"long numbers", [&] { return repeated("{\"a\":[", "2.2250738585072011e-308,", "0]}"); }},
        {"one number", [&] { return repeated("{\"a\":0.", "7", "}"); }},
        {"deep arrays",
         [&] { return repeated("{\"a\":[", std::string(500, '[') + std::string(500, ']') + ",", "0]}"); }},
        {"objects with a key", [&] { return repeated("{\"a\":[", "{\"\":0},", "0]}"); }},
        {"open arrays", [&] { return repeated("{\"a\":", "[", ""); }},
        {"one string", [&] { return repeated("{\"a\":\"", "x", "\"}"); }},
        {"focal points", [&] { return repeated(R"({"edits":{"zoomBlocks":[{"focalKeyframes":[)", point, "0]}]}}"); }},
    };
    std::printf("worst texts of %.0f MiB (the text is part of the peak)\n", maximumProjectBytes / 1048576.0);
    for (const auto& [name, make] : worst) {
        const Cost cost = costOf(make());
        std::printf("  %-24s %8.1f ms  peak %6.1f MB\n", name, cost.milliseconds, cost.megabytes);
    }
    return 0;
}
