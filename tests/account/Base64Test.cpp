#include "account/Base64.h"

#include <gtest/gtest.h>

namespace tavelle::tests {
namespace {

TEST(Base64, readsEveryLengthOfPadding) {
  EXPECT_EQ(decodeBase64(""), "");
  EXPECT_EQ(decodeBase64("Zg=="), "f");
  EXPECT_EQ(decodeBase64("Zm8="), "fo");
  EXPECT_EQ(decodeBase64("Zm9v"), "foo");
  EXPECT_EQ(decodeBase64("Zm9vYmE="), "fooba");
}

TEST(Base64, readsAnyByte) {
  EXPECT_EQ(decodeBase64("AP+/"), (std::string{"\0\xFF\xBF", 3}));
}

TEST(Base64, refusesWhatIsNotStandard) {
  for (const char* text : {"Zg", "Zg=", "Z===", "====", "Zg==Zg==", "Z=g=", "=Zg=", "Zm9v\n", "Zm 9v===", "Zm9-",
                           "Zm9_", "Zm\xC3\xB6v", "Zm9vY"})
    EXPECT_EQ(decodeBase64(text), std::nullopt) << text;
}

}  // namespace
}  // namespace tavelle::tests
