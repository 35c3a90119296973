// Each trap of the command line, what is said about it, and that it is said once.
#include "cli/argument_warnings.h"

#include <gtest/gtest.h>

namespace flowtide::HeadlessExport {
namespace {

/// The warnings about a command line for a clip of ten seconds in a QuickTime movie.
std::vector<std::string> warnings(Arguments words, const std::string& output = "out.mov") {
    words.insert(words.begin(), {"--headless-export", "in.mov", output});
    ImportedClip clip;
    clip.duration = 10;
    clip.frameRate = 25;
    const SortedWords sorted = sortWords(words);
    return warningsAbout(sorted, parseRequest(parseArguments(sorted), clip, [](const std::string&) {}));
}

TEST(ArgumentWarnings, EachTrapIsNamedOnce) {
    const struct {
        Arguments words;
        std::vector<std::string> warnings;
    } cases[] = {
        {{}, {}},
        {{"0:1,5:0.5,99:0.5", "0.3", "", "--interpolation", "optical-flow", "--smooth-fps", "25", "--flow-ranges",
          "none", "--zoom", "0-1:2:InOut:0.1>0.9:0.5:0;1-2:2:in;2-3:2:out;3-4:2:CONSTANT", "--vertical-crop", "center",
          "--vertical-aspect", "4:5", "--vertical-smoothing", "0"},
         {}},
        {{"", "", "", "more", "--zom", "0-1:2"}, {"Nothing takes \"more\", \"--zom\", \"0-1:2\". See --help."}},
        {{"", "", "", "--zoom", "0-1:2", "--zoom", "1-2:2", "end"},
         {"Only the first --zoom counts.", "Nothing takes \"end\". See --help."}},
        {{"", "", "", "--zoom", "0-1:2", "--zoom"}, {"Only the first --zoom counts."}},
        {{"", "", "", "--flow-ranges"}, {"--flow-ranges has no value and no effect."}},
        {{"", "soft"}, {"\"soft\" is no number; the smoothing is 0.5."}},
        {{"--vertical-smoothing", "", "--vertical-crop", "center"},
         {"\"\" is no number; the crop's smoothing is 0.5."}},
        {{"--smooth-fps", "24p", "--interpolation", "optical-flow"},
         {"\"24p\" is no number; the threshold of slow motion is 30."}},
        {{"--smooth-fps", "24", "--flow-ranges", "1:2"},
         {"--flow-ranges has no effect without --interpolation optical-flow.",
          "--smooth-fps has no effect without --interpolation optical-flow."}},
        {{"--vertical-aspect", "4:5", "--vertical-smoothing", "1"},
         {"--vertical-aspect has no effect without --vertical-crop.",
          "--vertical-smoothing has no effect without --vertical-crop."}},
        {{"--zoom", "0-1:2;1-2:2:sideways"},
         {"Unknown zoom mode \"sideways\"; the block \"1-2:2:sideways\" ramps in and out."}},
        {{"--zoom", "0-1:2:in:left>0.2:0.1>0.2>0.3:fast:7"},
         {"\"left\" means nothing in the zoom block \"0-1:2:in:left>0.2:0.1>0.2>0.3:fast:7\" and is left out.",
          "\"0.2\" means nothing in the zoom block \"0-1:2:in:left>0.2:0.1>0.2>0.3:fast:7\" and is left out.",
          "\"fast\" means nothing in the zoom block \"0-1:2:in:left>0.2:0.1>0.2>0.3:fast:7\" and is left out.",
          "\"7\" means nothing in the zoom block \"0-1:2:in:left>0.2:0.1>0.2>0.3:fast:7\" and is left out."}},
        // The points within a millisecond of the trim's ends serve as its ends.
        {{"2:0.5,3:2,8:0.25", "", "2:8"}, {}},
        {{"2.0005:0.5,3:2,7.9995:0.25", "", "2:8"}, {}},
        {{"", "", "2:8"}, {}},
        {{"0:0.5,1:2,3:4,9:0.25", "", "2:8"},
         {"Curve points before the trim have no effect (0.0:0.5, 1.0:2.0); the export starts at speed 1.0.",
          "Curve points after the trim have no effect (9.0:0.25); the export ends at speed 1.0."}},
        {{"1.9:0.5,2:3,8:4,8.1:5", "", "2:8"},
         {"Curve points before the trim have no effect (1.9:0.5); the export starts at speed 3.0.",
          "Curve points after the trim have no effect (8.1:5.0); the export ends at speed 4.0."}},
        {{"", "", "5:8", "--vertical-crop", "0:0.2,6:0.5,8:1,9:0.1"},
         {"Crop points before the trim have no effect (0.0:0.2); the export starts at position 0.5.",
          "Crop points after the trim have no effect (9.0:0.1); the export ends at position 1.0."}},
        {{"", "", "2:8", "--zoom", "5-4:2;1-2:2;1-2.1:2;7.9-9:2;8-9:2"},
         {"The zoom block \"5-4:2\" ends no later than it begins and has no effect.",
          "The zoom block \"1-2:2\" lies outside the trim and has no effect.",
          "The zoom block \"8-9:2\" lies outside the trim and has no effect."}},
        {{"", "", "2:8", "--interpolation", "optical-flow", "--flow-ranges", "0:2,1:3,8:10"},
         {"The flow range 0.0:2.0 lies outside the trim and has no effect.",
          "The flow range 8.0:10.0 lies outside the trim and has no effect."}},
    };
    for (const auto& [words, expected] : cases)
        EXPECT_EQ(warnings(words), expected) << testing::PrintToString(words);
}

TEST(ArgumentWarnings, TheDestinationsNameTellsTheContainer) {
    for (const char* name : {"out.mov", "out.MOV", "out.qt", "out", "out.mp4/out"})
        EXPECT_EQ(warnings({}, name), std::vector<std::string>{}) << name;
    for (const std::string extension : {".mp4", ".m4v", ".mkv", ".M4V"})
        EXPECT_EQ(warnings({}, "out" + extension),
                  std::vector<std::string>{"The destination is named " + extension +
                                           ", but is written in the source's container, QuickTime movie."});
}

TEST(ArgumentWarnings, WordsBeforeTheExportCountToo) {
    const SortedWords words = sortWords({"--zoon", "--headless-export", "in.mov", "out.mov"});
    EXPECT_EQ(warningsAbout(words, parseRequest(parseArguments(words), {}, [](const std::string&) {})),
              std::vector<std::string>{"Nothing takes \"--zoon\". See --help."});
}

} // namespace
} // namespace flowtide::HeadlessExport
