// The error of the project and file layer.
#pragma once

#include <stdexcept>
#include <string>

namespace flowtide {

/// Something about a project or a file that the user chose; what() is the complete sentence to show.
class ProjectError : public std::runtime_error {
public:
    /// The one case there is: invalid, with its sentence.
    static ProjectError invalid(const std::string& sentence) { return ProjectError(sentence); }

private:
    using std::runtime_error::runtime_error;
};

} // namespace flowtide
