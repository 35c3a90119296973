// The file operations that a save consists of, behind an interface, so that each of them can be made to fail.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <span>

namespace flowtide {

/// Each function is one system call (made again when a signal interrupts it) and returns what that returns: -1 with
/// errno set on failure. What is created is private to the user, whatever the umask: files 0600, folders 0700.
class FileOperations {
public:
    virtual ~FileOperations() = default;

    virtual int makeFolder(const std::filesystem::path& path) = 0;
    /// A new file for writing; fails when anything of that name exists.
    virtual int createFile(const std::filesystem::path& path) = 0;
    /// A file to lock, created when missing.
    virtual int openLockFile(const std::filesystem::path& path) = 0;
    virtual int openFolder(const std::filesystem::path& path) = 0;
    /// Waits for the exclusive lock. It ends with the descriptor, hence with its process, however that ends.
    virtual int lock(int descriptor) = 0;
    virtual ssize_t write(int descriptor, std::span<const char> bytes) = 0;
    virtual int flush(int descriptor) = 0; ///< to the disk
    virtual int close(int descriptor) = 0;
    virtual int rename(const std::filesystem::path& from, const std::filesystem::path& to) = 0;
    virtual int remove(const std::filesystem::path& path) = 0;
};

/// The operating system's own. Without state; any thread.
FileOperations& systemFileOperations();

/// Throws ProjectError with the system's sentence for errno: "No space left on device (error 28)".
[[noreturn]] void throwSystemError(int error);

} // namespace flowtide
