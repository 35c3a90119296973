// The inference of missing colour tags.
#include "media/color.h"

#include <gtest/gtest.h>

namespace flowtide::test {
namespace {

TEST(Color, IncompleteTagsAreKeptAndTheRestInferred) {
    const OutputSize sd{720, 480};
    const OutputSize hd{1920, 1080};
    const struct {
        ColorProperties tags;
        OutputSize size;
        ColorProperties expected;
    } cases[] = {
        {{{}, {}, "smpte170m"}, sd, {"smpte170m", "smpte170m", "smpte170m"}},
        {{{}, {}, "bt470bg"}, hd, {"bt470bg", "smpte170m", "bt470bg"}},
        {{{}, "bt709", {}}, hd, {"bt709", "bt709", "bt709"}},
        {{"bt2020", "arib-std-b67", {}}, hd, {"bt2020", "arib-std-b67", "bt2020nc"}},
        {{{}, "arib-std-b67", {}}, {1280, 720}, {"bt2020", "arib-std-b67", "bt2020nc"}},
        {{{}, "smpte2084", {}}, sd, {"bt2020", "smpte2084", "bt2020nc"}},
        {{"smpte432", "smpte2084", {}}, hd, {"smpte432", "smpte2084", "bt2020nc"}},
        {{{}, {}, "bt2020nc"}, hd, {"bt2020", "bt2020-10", "bt2020nc"}},
        {{"bt709", {}, "bt709"}, sd, {"bt709", "smpte170m", "bt709"}},
    };
    for (const auto& [tags, size, expected] : cases)
        EXPECT_EQ(completedColor(tags, size), expected);
}

} // namespace
} // namespace flowtide::test
