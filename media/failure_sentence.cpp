// Translates the standard library's exceptions into sentences.
#include "media/failure_sentence.h"

#include <fmt/format.h>

#include <filesystem>
#include <new>
#include <stdexcept>
#include <system_error>

namespace flowtide {

std::string sentenceFor(const std::exception& error) {
    // A container that would outgrow the address space says so with a length_error.
    if (dynamic_cast<const std::bad_alloc*>(&error) || dynamic_cast<const std::length_error*>(&error))
        return "There is not enough memory.";
    if (const auto* file = dynamic_cast<const std::filesystem::filesystem_error*>(&error))
        return fmt::format("{}: {} (error {})", file->path1().string(), file->code().message(), file->code().value());
    if (const auto* refusal = dynamic_cast<const std::system_error*>(&error))
        return fmt::format("The system refused what the run needs: {} (error {})", refusal->code().message(),
                           refusal->code().value());
    return error.what();
}

} // namespace flowtide
