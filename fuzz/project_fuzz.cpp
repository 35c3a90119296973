// Any text, taken for a project and for the list of recent ones: what is accepted is written and read again to the same
// value; the rest is refused with a sentence.
#include "project/files/project_error.h"
#include "project/project_json.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

template <typename Decode, typename Encode>
void check(std::string_view text, const Decode& decode, const Encode& encode) {
    try {
        const auto value = decode(text);
        const std::string written = encode(value);
        if (!(decode(written) == value) || encode(decode(written)) != written) std::abort();
    } catch (const flowtide::ProjectError& error) {
        if (std::string_view(error.what()).empty()) std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(data, data + size);
    check(text, flowtide::decodeProject, flowtide::encodeProject);
    check(text, flowtide::decodeRecentProjects, flowtide::encodeRecentProjects);
    return 0;
}
