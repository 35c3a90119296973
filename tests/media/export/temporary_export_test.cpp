// An export's hidden file: its name, what a failure or a sudden end leaves at any operation, and what is cleaned up.
#include "media/export/temporary_export.h"
#include "tests/project/files/faulty_operations.h"
#include "tests/support/temporary_folder.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <regex>

namespace flowtide::test {
namespace {

using Fault = FaultyOperations::Fault;

std::vector<std::uint8_t> bytes(const char* text) {
    return {text, text + std::char_traits<char>::length(text)};
}

/// As a muxer writes: the header again at the end.
void writeMovie(TemporaryExport& file) {
    file.write(bytes("xxx"));
    file.write(bytes(" movie"));
    file.seek(0);
    file.write(bytes("new"));
}

TEST(TemporaryExport, IsHiddenBesideTheDestination) {
    const std::string uuid = "[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}";
    const std::string longName(251, 'n');
    const std::string longExtension(230, 'e');
    const std::vector<std::pair<std::string, std::string>> table{
        {"/a/b.c/take two.mp4", R"(/a/b\.c/\.take two-export-)" + uuid + R"(\.mp4)"},
        {"/a/take", R"(/a/\.take-export-)" + uuid + R"(\.mov)"},
        {"/a/take.", R"(/a/\.take-export-)" + uuid + R"(\.mov)"},
        {"take.v2.MOV", R"(\./\.take\.v2-export-)" + uuid + R"(\.MOV)"},
        {"/" + longName + ".mp4", R"(/\.n{206}-export-)" + uuid + R"(\.mp4)"},
        {"/take." + longExtension, R"(/\.take-export-)" + uuid + R"(\.mov)"},
    };
    for (const auto& [destination, pattern] : table)
        EXPECT_TRUE(std::regex_match(temporaryExportURL(destination).string(), std::regex(pattern))) << destination;
}

TEST(TemporaryExport, IsRenamedFlushedAndKeepsTheMode) {
    const TemporaryFolder folder;
    writeFile(folder / "out.mov", "old");
    ::chmod((folder / "out.mov").c_str(), 0640);
    FaultyOperations operations;
    {
        TemporaryExport file(folder / "out.mov", operations);
        writeMovie(file);
        EXPECT_EQ(file.size(), 9);
        EXPECT_EQ(readFile(folder / "out.mov"), "old");
        file.finishWriting();
        const int reader = ::open(file.path().c_str(), O_RDONLY); // as where a lock keeps others from reading
        EXPECT_EQ(::flock(reader, LOCK_SH | LOCK_NB), 0);
        ::close(reader);
        removeStaleTemporaryExports(folder / "out.mov");
        file.moveIntoPlace();
    }
    std::vector<std::string> lasting;
    std::copy_if(operations.calls().begin(), operations.calls().end(), std::back_inserter(lasting),
                 [](const auto& call) { return call == "writeAt" || call == "rename" || call.starts_with("flush"); });
    EXPECT_EQ(lasting, (std::vector<std::string>{"writeAt", "writeAt", "writeAt", "flush file", "flush file", "rename",
                                                 "flush folder"}));
    EXPECT_EQ(folder.names(), std::vector<std::string>{"out.mov"});
    EXPECT_EQ(readFile(folder / "out.mov"), "new movie");
    struct stat status {};
    ASSERT_EQ(::stat((folder / "out.mov").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0640U);
}

/// Writes over an old movie, or where there is none, with one operation going wrong.
class FaultyExport {
public:
    explicit FaultyExport(bool replaces) {
        if (replaces) writeFile(destination(), "old");
        before_ = readFile(destination());
    }
    std::filesystem::path destination() const { return folder_ / "out.mov"; }

    /// Whether it got into place.
    bool run(FaultyOperations& operations) const {
        try {
            TemporaryExport file(destination(), operations);
            writeMovie(file);
            file.finishWriting();
            file.moveIntoPlace();
            return true;
        } catch (const std::system_error&) {
            return false;
        }
    }
    void expectOldOrNew() const {
        const std::string now = readFile(destination());
        EXPECT_TRUE(now == before_ || now == "new movie") << now;
    }
    void expect(bool inPlace) const { EXPECT_EQ(readFile(destination()), inPlace ? "new movie" : before_); }
    void expectNothingElse() const {
        for (const std::string& name : folder_.names())
            EXPECT_EQ(name, "out.mov");
    }

private:
    TemporaryFolder folder_;
    std::string before_;
};

TEST(TemporaryExport, AnyOperationFails) {
    for (const bool replaces : {false, true}) {
        FaultyOperations whole;
        ASSERT_TRUE(FaultyExport(replaces).run(whole));
        for (int at = 0; at < whole.count(); ++at) {
            const std::string& call = whole.calls()[static_cast<std::size_t>(at)];
            for (const auto& [fault, error] :
                 {std::pair{Fault::fails, EIO}, {Fault::failsForever, EROFS}, {Fault::shortWrite, ENOSPC}}) {
                SCOPED_TRACE(std::to_string(at) + " " + call);
                const FaultyExport attempt(replaces);
                FaultyOperations operations(fault, at, error);
                const bool inPlace = attempt.run(operations);
                attempt.expect(inPlace);
                // What cannot be removed, or only by guess, stays for the next clean-up.
                if (fault == Fault::failsForever) removeStaleTemporaryExports(attempt.destination());
                attempt.expectNothingElse();
                // The rights, locks and the folder's flush are the only ones to be done without.
                if (fault == Fault::fails && call != "changeMode" && call != "tryLock" && call != "shareLock" &&
                    call != "openFolder" && call != "flush folder" && call != "close") {
                    EXPECT_FALSE(inPlace);
                }
            }
        }
    }
}

TEST(TemporaryExport, TheProcessDiesAtAnyOperation) {
    for (const bool replaces : {false, true}) {
        FaultyOperations whole;
        ASSERT_TRUE(FaultyExport(replaces).run(whole));
        for (int at = 0; at < whole.count(); ++at)
            for (const Fault fault : {Fault::killsBefore, Fault::killsAfter, Fault::killsHalfWritten}) {
                SCOPED_TRACE(std::to_string(at) + " " + whole.calls()[static_cast<std::size_t>(at)]);
                const FaultyExport attempt(replaces);
                EXPECT_EQ(statusOf(startProcess([&] {
                              FaultyOperations operations(fault, at);
                              attempt.run(operations);
                          })),
                          FaultyOperations::killedStatus);
                attempt.expectOldOrNew();
                removeStaleTemporaryExports(attempt.destination());
                attempt.expectOldOrNew();
                attempt.expectNothingElse();
            }
    }
}

TEST(TemporaryExport, CleanUpTakesMoviesThatNoLiveProcessHolds) {
    const std::string id = "-export-3F2504E0-4F89-41D3-9A0C-0305E82C3301";
    const std::vector<std::string> stale{".a" + id + ".mov", ".b" + id + ".MP4", ".c" + id + ".m4V",
                                         ".d" + id + ".take"};
    const std::vector<std::string> others{".a" + id + ".txt", ".b" + id, ".c-export-x.mov", "d" + id + ".mov"};
    const TemporaryFolder folder;
    const TemporaryExport live(folder / "out.Take");
    for (const auto& names : {stale, others})
        for (const std::string& name : names)
            writeFile(folder.path() / name, name);
    removeStaleTemporaryExports(folder / "out.Take");
    std::vector<std::string> left = others;
    left.push_back(live.path().filename().string());
    std::sort(left.begin(), left.end());
    EXPECT_EQ(folder.names(), left);
}

} // namespace
} // namespace flowtide::test
