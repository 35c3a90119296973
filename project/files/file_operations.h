// The system calls that make, write, replace and remove files, behind an interface, so that each can be made to fail.
#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>
#include <system_error>

namespace flowtide {

/// Each function is one system call (made again when a signal interrupts it) and returns what that returns: -1 with
/// errno set on failure. Files that are created or opened are closed when another program is started.
class FileOperations {
public:
    virtual ~FileOperations() = default;

    /// A folder that is private to the user (0700), whatever the umask.
    virtual int makeFolder(const std::filesystem::path& path) = 0;
    /// A new file for writing, of the permissions in `mode` that the umask leaves; fails when anything of that name
    /// exists, be it a link to nowhere.
    virtual int createFile(const std::filesystem::path& path, mode_t mode) = 0;
    /// A file to lock, created when missing (0600, whatever the umask).
    virtual int openLockFile(const std::filesystem::path& path) = 0;
    /// An existing file to lock, for writing too where that is allowed, since NFS locks no other; never a symbolic
    /// link's target, never waiting for a pipe's other end.
    virtual int openExisting(const std::filesystem::path& path) = 0;
    virtual int openFolder(const std::filesystem::path& path) = 0;
    /// Waits for the exclusive lock. It ends with the descriptor, hence with its process, however that ends.
    virtual int lock(int descriptor) = 0;
    /// The same without waiting: fails with EWOULDBLOCK when somebody else holds the lock.
    virtual int tryLock(int descriptor) = 0;
    /// Puts a lock that others may share in the exclusive one's place, without waiting. In between there is none.
    virtual int shareLock(int descriptor) = 0;
    virtual int status(int descriptor, struct stat& result) = 0;
    /// Of what has the name, be it a symbolic link.
    virtual int status(const std::filesystem::path& path, struct stat& result) = 0;
    virtual int changeMode(int descriptor, mode_t mode) = 0;
    /// May write less than asked for. `offset` is in bytes from the file's start.
    virtual ssize_t writeAt(int descriptor, std::span<const std::byte> bytes, std::int64_t offset) = 0;
    virtual int flush(int descriptor) = 0; ///< to the disk
    virtual int close(int descriptor) = 0;
    virtual int rename(const std::filesystem::path& from, const std::filesystem::path& to) = 0;
    virtual int remove(const std::filesystem::path& path) = 0;
};

/// The operating system's own. Without state; any thread.
FileOperations& systemFileOperations();

/// An open descriptor, closed on destruction.
class Descriptor {
public:
    /// `value`: what an operation returned; negative for none.
    Descriptor(FileOperations& operations, int value)
        : operations_(operations)
        , value_(value) {}
    ~Descriptor() { close(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    bool isOpen() const { return value_ >= 0; }
    int get() const { return value_; }
    void close();
    /// Closes and takes over another one.
    void reset(int value);
    /// Writes all of `bytes`; `offset` is in bytes from the file's start. Throws std::system_error.
    void writeAll(std::span<const std::byte> bytes, std::int64_t offset) const;

private:
    FileOperations& operations_;
    int value_;
};

/// The folder that a path's last component is in; "." when it names none.
std::filesystem::path folderOf(const std::filesystem::path& path);

/// Makes the names in a folder last; an error when that fails. Some file systems cannot flush a folder and say so with
/// EINVAL: there is nothing more to be had from them, and no error.
[[nodiscard]] std::error_code flushFolder(FileOperations& operations, const std::filesystem::path& folder);

/// What errno says.
std::error_code lastSystemError();

/// Throws ProjectError with the system's sentence: "No space left on device (error 28)".
[[noreturn]] void throwSystemError(const std::error_code& error);

} // namespace flowtide
