// The sentence that a call is refused with.
#pragma once

#include "project/files/project_error.h"

#include <string>

namespace flowtide::test {

/// Empty when the call succeeds.
template <typename Call>
std::string refusal(const Call& call) {
    try {
        call();
    } catch (const ProjectError& error) {
        return error.what();
    }
    return {};
}

} // namespace flowtide::test
