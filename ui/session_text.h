// The session's sentences in the user's language.
#pragma once

#include <QString>
#include <string>

namespace flowtide {

/// A sentence of the session, translated where it is one of those that people meet every day. Numbers in it are kept.
/// What names a cause (a file that cannot be read, a verification that failed) stays as the session says it, so that it
/// can be looked up.
QString sessionText(const std::string& sentence);

} // namespace flowtide
