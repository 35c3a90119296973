// When the bundle is renamed, and in which order.
#include "project/legacy_bundle_rename.h"

#include <gtest/gtest.h>

#include <functional>

namespace flowtide::test {
namespace {

struct FakeHost : BundleHost {
    std::optional<std::filesystem::path> path = "/Apps/Flowtide.app";
    std::optional<std::string> name = "Loftwell Video";
    bool targetExists = false;
    bool moveSucceeds = true;
    std::vector<std::string> calls;

    std::optional<std::filesystem::path> bundlePath() const override { return path; }
    std::optional<std::string> bundleName() const override { return name; }
    bool exists(const std::filesystem::path& target) const override {
        EXPECT_EQ(target, "/Apps/Loftwell Video.app");
        return targetExists;
    }
    bool move(const std::filesystem::path& from, const std::filesystem::path& to) override {
        calls.push_back("move " + from.string() + " to " + to.string());
        return moveSucceeds;
    }
    void start(const std::filesystem::path& program, const std::vector<std::string>& arguments) override {
        std::string call = program.string();
        for (const std::string& argument : arguments)
            call += "|" + argument;
        calls.push_back(call);
    }
};

using Calls = std::vector<std::string>;
const std::string move = "move /Apps/Flowtide.app to /Apps/Loftwell Video.app";

Calls callsWith(const std::function<void(FakeHost&)>& change) {
    FakeHost host;
    change(host);
    if (LegacyBundleRename::renameAndRelaunchIfNeeded(host)) host.calls.push_back("exit");
    return host.calls;
}

TEST(LegacyBundleRename, MovesThenRelaunchesThenExits) {
    const Calls all{move, "/bin/sh|-c|sleep 0.5; /usr/bin/open \"$0\"|/Apps/Loftwell Video.app", "exit"};
    EXPECT_EQ(callsWith([](FakeHost&) {}), all);
    EXPECT_EQ(callsWith([](FakeHost& host) { host.path = "/Apps/Flowtide.app/"; }), all);
}

TEST(LegacyBundleRename, OtherwiseRunsOn) {
    EXPECT_EQ(callsWith([](FakeHost& host) { host.path.reset(); }), Calls{});
    EXPECT_EQ(callsWith([](FakeHost& host) { host.name.reset(); }), Calls{});
    EXPECT_EQ(callsWith([](FakeHost& host) { host.name = "Flowtide"; }), Calls{});
    EXPECT_EQ(callsWith([](FakeHost& host) { host.path = "/Apps/Mine.app"; }), Calls{});
    EXPECT_EQ(callsWith([](FakeHost& host) { host.path = "/Apps/Loftwell Video.app"; }), Calls{});
    EXPECT_EQ(callsWith([](FakeHost& host) { host.targetExists = true; }), Calls{});
    EXPECT_EQ(callsWith([](FakeHost& host) { host.moveSucceeds = false; }), Calls{move});
}

} // namespace
} // namespace flowtide::test
