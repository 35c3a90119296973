// Decides whether the bundle still has its former name, moves it and has a shell open it again.
#include "project/legacy_bundle_rename.h"

namespace flowtide::LegacyBundleRename {

bool renameAndRelaunchIfNeeded(BundleHost& host) {
    const auto bundle = host.bundlePath();
    if (!bundle) return false;
    const auto name = host.bundleName();
    if (!name) return false;
    // A bundle's location may be given as a folder, with a slash at its end.
    const std::filesystem::path current = bundle->has_filename() ? *bundle : bundle->parent_path();
    const std::string expected = *name + ".app";
    if (current.filename() != formerBundleName || expected == formerBundleName) return false;
    const std::filesystem::path target = current.parent_path() / expected;
    if (host.exists(target) || !host.move(current, target)) return false;
    host.start("/bin/sh", {"-c", "sleep 0.5; /usr/bin/open \"$0\"", target.string()});
    return true;
}

} // namespace flowtide::LegacyBundleRename
