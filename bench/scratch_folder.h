// A folder for a benchmark's files, gone with it.
#pragma once

#include <unistd.h>

#include <filesystem>
#include <string>

namespace flowtide::bench {

/// One a process; the name carries the process's id.
class ScratchFolder {
public:
    ScratchFolder() { std::filesystem::create_directories(path_); }
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    std::string operator/(const std::string& name) const { return (path_ / name).string(); }

private:
    std::filesystem::path path_ =
        std::filesystem::temp_directory_path() / ("flowtide-bench-" + std::to_string(::getpid()));
};

} // namespace flowtide::bench
