// Paths survive the way through URLs byte for byte; what names no local file is not taken for one.
#include "project/files/url.h"

#include <gtest/gtest.h>

namespace flowtide::test {
namespace {

TEST(Url, PathsAreEncodedAndComeBack) {
    const std::vector<std::pair<std::string, std::string>> table{
        {"/a/b.mov", "file:///a/b.mov"},
        {"/My Clip.mov", "file:///My%20Clip.mov"},
        {"/\xC3\xBC.mov", "file:///%C3%BC.mov"},
        {"/100% #1?.mov", "file:///100%25%20%231%3F.mov"},
        {"/\xF0\x9F\x8E\xAC", "file:///%F0%9F%8E%AC"},
        {"/\xFF\n", "file:///%FF%0A"},
        {"/a;b[c]\"d\\|", "file:///a%3Bb%5Bc%5D%22d%5C%7C"},
        {"/-._~!$&'()*+,=:@", "file:///-._~!$&'()*+,=:@"},
    };
    for (const auto& [path, url] : table) {
        EXPECT_EQ(Url::ofFile(path).text, url);
        EXPECT_EQ(Url{url}.filePath(), path);
    }
    std::string everyByte = "/";
    for (int byte = 1; byte < 256; ++byte)
        everyByte += static_cast<char>(byte);
    EXPECT_EQ(Url::ofFile(everyByte).filePath(), everyByte);
}

TEST(Url, OtherWritersForms) {
    for (const char* text : {"file:///a%20b", "FILE:///a%20b", "file://localhost/a%20b", "file:/a%20b", "file:///a b",
                             "file:///%61%20b", "file:///a%20b?query", "file:///a%20b#fragment"})
        EXPECT_EQ(Url{text}.filePath(), "/a b") << text;
}

TEST(Url, NoLocalFiles) {
    for (const char* text : {"", "file", "file:", "file://", "file:a", "file://host/a", "https://example.org/a", "/a",
                             "file:///a%", "file:///a%2", "file:///a%zz", "file:///a%00b"})
        EXPECT_FALSE(Url{text}.filePath()) << text;
}

} // namespace
} // namespace flowtide::test
