// What a job's failure says.
#include "editor/jobs/session_jobs.h"

#include "media/failure_sentence.h"
#include "media/flowtide_error.h"

namespace flowtide {

std::optional<std::string> failureToShow(const std::exception& error) {
    const auto* known = dynamic_cast<const FlowtideError*>(&error);
    if (known && known->kind() == FlowtideError::Case::exportCancelled) return std::nullopt;
    return sentenceFor(error);
}

} // namespace flowtide
