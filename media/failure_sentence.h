// What a person reads of a failure that ends a run.
#pragma once

#include <exception>
#include <string>

namespace flowtide {

/// The sentence of one of our own errors as it is; words of our own for what the standard library throws when memory
/// or another resource of the system runs out.
std::string sentenceFor(const std::exception& error);

} // namespace flowtide
