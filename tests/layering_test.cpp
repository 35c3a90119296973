// Reads the whole source tree and fails where a file includes what its layer must not know, where a source file is
// missing from its build file, or where a text speaks of documents that are no part of this repository.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

using Findings = std::vector<std::string>;

/// One file of ours; `path` relative to the source folder, with slashes.
struct SourceFile {
    std::string path;
    std::string text;
};

bool isCpp(const std::string& path) {
    return path.ends_with(".cpp") || path.ends_with(".h");
}

bool isUnder(const std::string& path, std::string_view folder) {
    return path.starts_with(folder) && path.substr(folder.size()).starts_with('/');
}

/// What each layer may include, itself apart. A file belongs to the longest folder that holds it.
const std::map<std::string, std::set<std::string>> allowedLayers = [] {
    std::map<std::string, std::set<std::string>> rules{{"core", {}}};
    // A layer may use what it names and all that those may use.
    const auto add = [&](const std::string& layer, const std::vector<std::string>& below) {
        auto& allowed = rules[layer];
        for (const std::string& lower : below) {
            allowed.insert(lower);
            allowed.insert(rules.at(lower).begin(), rules.at(lower).end());
        }
    };
    add("project/files", {"core"});
    add("project", {"project/files"});
    add("media", {"project/files"});
    add("media/frames", {"media"});
    add("media/sound", {"media"});
    add("media/flow", {"media/frames"});
    add("media/tracking", {"media/frames"});
    add("media/export", {"media/frames", "media/sound", "media/flow"});
    add("media/preview", {"media/export"});
    add("media/player", {"media/preview"});
    // The rest of media/ knows the backend's interface only, so that another one can take its place.
    add("media/ffmpeg", {"media"});
    add("media/sdl", {"media/player"});
    add("cli", {"media/preview", "media/tracking"});
    add("editor", {"media/player", "media/tracking", "project"});
    add("ui", {"editor"});
    return rules;
}();

/// The layer that a file belongs to: the longest folder with rules of its own, else the first folder.
std::string layerOf(const std::string& path) {
    std::string layer;
    for (const auto& [folder, below] : allowedLayers)
        if (isUnder(path, folder) && folder.size() > layer.size()) layer = folder;
    const std::size_t slash = path.find('/');
    if (layer.empty() && slash != std::string::npos) layer = path.substr(0, slash);
    return layer;
}

/// The one file that joins the command line, the window and a backend.
constexpr std::string_view compositionRoot = "cli/main.cpp";

bool mayInclude(const std::string& path, const std::string& included) {
    const std::string from = layerOf(path);
    const std::string to = layerOf(included);
    const auto rule = allowedLayers.find(from);
    // Tests, benchmarks and fuzzers look into every layer, and borrow the tests' helpers.
    if (rule == allowedLayers.end()) return to == from || to == "tests" || allowedLayers.contains(to);
    if (path == compositionRoot && (to == "ui" || to == "media/ffmpeg" || to == "media/sdl")) return true;
    return to == from || rule->second.contains(to);
}

bool mayUseQt(const std::string& path) {
    return isUnder(path, "ui") || isUnder(path, "tests/ui") || isUnder(path, "bench");
}

bool mayUseLibav(const std::string& path) {
    const std::string layer = layerOf(path);
    return layer == "media/ffmpeg" || !allowedLayers.contains(layer);
}

bool mayUseSdl(const std::string& path) {
    const std::string layer = layerOf(path);
    return layer == "media/sdl" || !allowedLayers.contains(layer);
}

/// The text of each line, or of its comment alone in C++, in which a member may well be called by any short word.
std::string prose(const std::string& path, const std::string& line) {
    if (!isCpp(path)) return line;
    const std::size_t start = std::min(line.find("//"), line.find("/*"));
    return start == std::string::npos ? "" : line.substr(start);
}

Findings findingsIn(const SourceFile& file) {
    static const std::regex include(R"re(^\s*#\s*include\s*([<"])([^>"]+)[>"])re");
    static const std::regex qtHeader("(Qt|Q[A-Z]).*");
    static const std::regex libavHeader("lib(av|sw|postproc).*");
    static const std::regex sdlHeader("(SDL2/)?SDL.*");
    static const std::regex foreignDocument("\\b(s"
                                            "pec(ifications?)?|part\\s+\\d+\\.\\d+)\\b",
                                            std::regex::icase);
    Findings findings;
    std::istringstream lines(file.text);
    int number = 0;
    for (std::string line; std::getline(lines, line);) {
        ++number;
        const auto report = [&](const std::string& what) {
            findings.push_back(file.path + ":" + std::to_string(number) + ": " + what);
        };
        const std::string words = prose(file.path, line);
        std::smatch match;
        if (std::regex_search(words, match, foreignDocument)) report("\"" + match.str() + "\" in a text of ours");
        if (!isCpp(file.path) || !std::regex_search(line, match, include)) continue;

        const std::string header = match.str(2);
        if (std::regex_match(header, libavHeader)) {
            if (!mayUseLibav(file.path)) report("FFmpeg header <" + header + ">");
        } else if (std::regex_match(header, sdlHeader)) {
            if (!mayUseSdl(file.path)) report("SDL header <" + header + ">");
        } else if (match.str(1) == "<") {
            if (std::regex_match(header, qtHeader) && !mayUseQt(file.path)) report("Qt header <" + header + ">");
        } else if (!mayInclude(file.path, header)) {
            report("must not include \"" + header + "\"");
        }
    }
    return findings;
}

std::string contents(const fs::path& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// Every text file of ours, sorted by path.
std::vector<SourceFile> sourceTree() {
    static const std::set<std::string> extensions = {"",      ".cpp", ".h",  ".md",  ".txt",    ".cmake",
                                                     ".json", ".sh",  ".in", ".yml", ".desktop"};
    const fs::path root = FLOWTIDE_SOURCE_DIR;
    std::vector<SourceFile> files;
    for (auto entry = fs::recursive_directory_iterator(root); entry != fs::recursive_directory_iterator(); ++entry) {
        const std::string name = entry->path().filename().string();
        if (entry->is_directory()) {
            const bool atRoot = entry.depth() == 0;
            if (atRoot && name != ".ci" && (name.starts_with('.') || name.starts_with("build")))
                entry.disable_recursion_pending();
        } else if (entry->is_regular_file() && extensions.contains(entry->path().extension().string())) {
            files.push_back({entry->path().lexically_relative(root).generic_string(), contents(entry->path())});
        }
    }
    std::ranges::sort(files, {}, &SourceFile::path);
    return files;
}

/// Whether the nearest CMakeLists.txt above a .cpp file names it, relative to itself.
bool isListed(const fs::path& path) {
    const fs::path root = FLOWTIDE_SOURCE_DIR;
    fs::path folder = path.parent_path();
    while (!folder.empty() && !fs::exists(root / folder / "CMakeLists.txt"))
        folder = folder.parent_path();
    std::string list = contents(root / folder / "CMakeLists.txt");
    std::ranges::replace_if(
        list, [](char c) { return c == '(' || c == ')' || c == '"'; }, ' ');
    const std::string relative = path.lexically_relative(folder.empty() ? "." : folder).generic_string();
    std::istringstream words(list);
    return std::find(std::istream_iterator<std::string>(words), {}, relative) != std::istream_iterator<std::string>();
}

TEST(Layering, EveryRuleReports) {
    const auto headers = [](const std::string& path, const std::string& header) {
        return findingsIn({path, "\n#include " + header + "\n"});
    };
    EXPECT_THAT(headers("core/a.h", "\"project/b.h\""), ElementsAre("core/a.h:2: must not include \"project/b.h\""));
    EXPECT_THAT(headers("media/a.cpp", "<libavutil/frame.h>"),
                ElementsAre("media/a.cpp:2: FFmpeg header <libavutil/frame.h>"));
    EXPECT_THAT(headers("media/player/a.cpp", "<SDL.h>"), ElementsAre("media/player/a.cpp:2: SDL header <SDL.h>"));
    EXPECT_THAT(headers("editor/a.cpp", "<QString>"), ElementsAre("editor/a.cpp:2: Qt header <QString>"));

    for (const auto& [path, header] : std::vector<std::pair<std::string, std::string>>{
             {"core/a.h", "\"a.h\""},
             {"project/a.h", "\"media/a.h\""},
             {"media/a.h", "\"media/ffmpeg/a.h\""},
             {"media/a.h", "\"cli/a.h\""},
             {"media/a.h", "\"project/a.h\""},
             {"media/a.h", "\"media/frames/a.h\""},
             {"media/frames/a.h", "\"media/flow/kernels/a.h\""},
             {"media/sound/a.h", "\"media/frames/a.h\""},
             {"media/export/a.h", "\"media/preview/a.h\""},
             {"media/ffmpeg/a.h", "\"media/export/a.h\""},
             {"project/files/a.h", "\"project/a.h\""},
             {"media/ffmpeg/a.h", "\"tests/support/a.h\""},
             {"cli/a.cpp", "\"ui/a.h\""},
             {"cli/a.cpp", "\"editor/a.h\""},
             {"media/player/a.h", "\"media/sdl/a.h\""},
             {"cli/main.cpp", "\"editor/a.h\""},
             {"editor/a.cpp", "\"ui/a.h\""},
             {"editor/a.cpp", "\"cli/a.h\""},
             {"ui/a.cpp", "\"media/ffmpeg/a.h\""},
             {"core/a.cpp", "\"libswscale/swscale.h\""},
             {"tests/editor/a.cpp", "<QtCore/QString>"},
         }) {
        EXPECT_EQ(headers(path, header).size(), 1U) << path << " includes " << header;
    }
    for (const auto& [path, header] : std::vector<std::pair<std::string, std::string>>{
             {"core/a.h", "\"core/b.h\""},
             {"media/flow/kernels/a.cpp", "\"media/b.h\""},
             {"media/player/a.cpp", "\"media/export/b.h\""},
             {"project/a.cpp", "\"project/files/b.h\""},
             {"media/ffmpeg/a.cpp", "\"media/media_io.h\""},
             {"media/ffmpeg/a.cpp", "<libavutil/frame.h>"},
             {"media/sdl/a.cpp", "\"media/player/b.h\""},
             {"media/sdl/a.cpp", "<SDL2/SDL.h>"},
             {"cli/main.cpp", "\"ui/flowtide_app.h\""},
             {"cli/main.cpp", "\"media/ffmpeg/ffmpeg_backend.h\""},
             {"ui/a.cpp", "\"core/time.h\""},
             {"ui/a.cpp", "<QWidget>"},
             {"core/a.cpp", "<queue>"},
             {"tests/media/a.cpp", "<libavutil/frame.h>"},
             {"bench/a.cpp", "\"tests/core/b.h\""},
         }) {
        EXPECT_THAT(headers(path, header), IsEmpty()) << path << " includes " << header;
    }
}

TEST(Layering, ForeignDocumentsAreFoundInProseOnly) {
    const std::string word = std::string("Sp") + "ec";
    const std::string part = std::string("pa") + "rt 4.2";
    EXPECT_EQ(findingsIn({"core/a.h", "int x; // as the " + word + " says"}).size(), 1U);
    EXPECT_EQ(findingsIn({"README.md", "See " + part + "."}).size(), 1U);
    EXPECT_EQ(findingsIn({"run", "# " + word + "ification"}).size(), 1U);
    EXPECT_THAT(findingsIn({"core/a.h", "int " + word + "; // a specific part of 4.2 seconds"}), IsEmpty());
}

TEST(Layering, TheTreeKeepsTheRules) {
    const std::vector<SourceFile> files = sourceTree();
    ASSERT_FALSE(files.empty());
    for (const SourceFile& file : files)
        EXPECT_THAT(findingsIn(file), IsEmpty());
}

TEST(Layering, EverySourceFileIsBuilt) {
    for (const SourceFile& file : sourceTree()) {
        EXPECT_TRUE(!file.path.ends_with(".cpp") || isListed(file.path)) << file.path << " is in no CMakeLists.txt";
    }
}

} // namespace
