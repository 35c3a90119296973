// Temporary folders and whole-file reading.
#include "tests/support/temporary_folder.h"

#include "core/uuid.h"

#include <algorithm>
#include <fstream>
#include <iterator>

namespace flowtide::test {

TemporaryFolder::TemporaryFolder()
    : path_(std::filesystem::temp_directory_path() / ("flowtide-test-" + Uuid::random().text())) {
    std::filesystem::create_directories(path_);
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::vector<std::string> TemporaryFolder::names() const {
    std::vector<std::string> result;
    for (const auto& entry : std::filesystem::directory_iterator(path_))
        result.push_back(entry.path().filename().string());
    std::sort(result.begin(), result.end());
    return result;
}

std::string readFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void writeFile(const std::filesystem::path& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

} // namespace flowtide::test
