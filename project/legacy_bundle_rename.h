// Renames the application's bundle once after the product changed its name, and starts it again.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace flowtide {

/// What the step needs of a platform. Where there are no bundles, bundlePath() is empty and nothing else is called.
class BundleHost {
public:
    virtual ~BundleHost() = default;

    /// Where the running bundle is; nothing when the program does not run from one.
    virtual std::optional<std::filesystem::path> bundlePath() const = 0;
    /// "CFBundleName" of the bundle's information dictionary.
    virtual std::optional<std::string> bundleName() const = 0;
    virtual bool exists(const std::filesystem::path& path) const = 0;
    /// Returns whether the move succeeded.
    virtual bool move(const std::filesystem::path& from, const std::filesystem::path& to) = 0;
    /// Starts a program that outlives this process.
    virtual void start(const std::filesystem::path& program, const std::vector<std::string>& arguments) = 0;
};

namespace LegacyBundleRename {

/// The bundle's file name before the product was renamed.
constexpr const char* formerBundleName = "Flowtide.app";

/// When the running bundle still has its former file name: moves it to its present one and lets a shell open it half a
/// second later. Does nothing when the present name is taken or the move fails. Returns whether the program was started
/// anew; this process is then to exit with status 0 at once.
[[nodiscard]] bool renameAndRelaunchIfNeeded(BundleHost& host);

} // namespace LegacyBundleRename
} // namespace flowtide
