#include "platform/UUID.h"

#include <gtest/gtest.h>

#include <set>
#include <string_view>

namespace tavelle::tests {
namespace {

TEST(UUID, isWrittenInTheCanonicalFormInUpperCase) {
  EXPECT_EQ(UUID::parse("00112233-4455-6677-8899-aabbccddeeff")->uuidString(), "00112233-4455-6677-8899-AABBCCDDEEFF");
  EXPECT_EQ(UUID{}.uuidString(), "00000000-0000-0000-0000-000000000000");
}

TEST(UUID, isReadInEitherCase) {
  EXPECT_EQ(UUID::parse("00112233-4455-6677-8899-aabbccddeeff"), UUID::parse("00112233-4455-6677-8899-AABBCCDDEEFF"));
}

TEST(UUID, isNotReadFromAnythingElse) {
  for (const char* text : {"", "00112233445566778899aabbccddeeff", "{00112233-4455-6677-8899-aabbccddeeff}",
                           "00112233-4455-6677-8899-aabbccddeef", "00112233-4455-6677-8899-aabbccddeefff",
                           "00112233-4455-6677-8899-aabbccddeefg", "0011223-34455-6677-8899-aabbccddeeff",
                           "-0112233-4455-6677-8899-aabbccddeeff", "+1112233-4455-6677-8899-aabbccddeeff"}) {
    EXPECT_FALSE(UUID::parse(text)) << text;
  }
}

TEST(UUID, isFreshAndOfVersionFourWhenRandom) {
  std::set<UUID> seen;
  for (int i = 0; i < 1000; ++i) {
    const auto uuid = UUID::random();
    const auto text = uuid.uuidString();
    EXPECT_EQ(text[14], '4') << text;
    EXPECT_NE(std::string_view{"89AB"}.find(text[19]), std::string_view::npos) << text;
    EXPECT_TRUE(seen.insert(uuid).second);
  }
}

}  // namespace
}  // namespace tavelle::tests
