// The colour of tracks that do not say all of it.
#include "media/color.h"

#include <algorithm>

namespace flowtide {

namespace {

bool isStandardDefinition(OutputSize size) {
    return std::min(size.width, size.height) <= 576;
}

} // namespace

ColorProperties completedColor(const ColorProperties& tags, OutputSize size) {
    const auto starts = [](const std::optional<std::string>& tag, const char* prefix) {
        return tag && tag->rfind(prefix, 0) == 0;
    };
    ColorProperties usual{"bt709", "bt709", "bt709"};
    const bool isHDR = tags.transferFunction == "smpte2084" || tags.transferFunction == "arib-std-b67";
    if (starts(tags.primaries, "bt2020") || starts(tags.matrix, "bt2020") || isHDR)
        usual = {"bt2020", "bt2020-10", "bt2020nc"};
    else if (starts(tags.primaries, "bt470bg") || starts(tags.matrix, "bt470bg"))
        usual = {"bt470bg", "smpte170m", "bt470bg"};
    else if (isStandardDefinition(size))
        usual = {"smpte170m", "smpte170m", "smpte170m"};
    return {tags.primaries ? tags.primaries : usual.primaries,
            tags.transferFunction ? tags.transferFunction : usual.transferFunction,
            tags.matrix ? tags.matrix : usual.matrix};
}

} // namespace flowtide
