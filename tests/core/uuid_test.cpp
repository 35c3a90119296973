// Identifiers: what text they accept, and that random ones are distinct.
#include "core/uuid.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace flowtide {
namespace {

TEST(UuidTest, ReadsEitherCaseAndWritesUpperCase) {
    const auto id = Uuid::parse("3f2504e0-4F89-41d3-9a0C-0305e82c3301");
    ASSERT_TRUE(id);
    EXPECT_EQ(id->bytes[0], 0x3F);
    EXPECT_EQ(id->bytes[15], 0x01);
    EXPECT_EQ(id->text(), "3F2504E0-4F89-41D3-9A0C-0305E82C3301");
}

TEST(UuidTest, RefusesEverythingElse) {
    for (const char* text : {"", "3F2504E0", "3F2504E0-4F89-41D3-9A0C-0305E82C330",
                             "3F2504E0-4F89-41D3-9A0C-0305E82C33011", "3F2504E0-4F89-41D3-9A0C-0305E82C330G",
                             "3F2504E04-F89-41D3-9A0C-0305E82C3301", "3F2504E0 4F89 41D3 9A0C 0305E82C3301",
                             "3F2504E0-4F89-41D3-9A0C-0305E82C-301", "{3F2504E0-4F89-41D3-9A0C-0305E82C}"}) {
        EXPECT_FALSE(Uuid::parse(text)) << text;
    }
    EXPECT_FALSE(Uuid::parse(std::string(36, '\0')));
}

TEST(UuidTest, RandomOnesDifferAndSurviveTheirText) {
    std::set<Uuid> seen;
    for (int i = 0; i < 200; ++i) {
        const Uuid id = Uuid::random();
        EXPECT_EQ(id.text()[14], '4');
        EXPECT_NE(std::string("89AB").find(id.text()[19]), std::string::npos);
        EXPECT_EQ(Uuid::parse(id.text()), id);
        EXPECT_TRUE(seen.insert(id).second);
    }
}

} // namespace
} // namespace flowtide
