#include "llm/KeychainHelper.h"

#include "platform/fake/Keychain.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tavelle::tests {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

class KeychainHelperTest : public testing::Test {
 protected:
  FakeKeychain keychain;
  KeychainHelper helper{keychain};
};

TEST_F(KeychainHelperTest, keepsOneItemUnderAKeyWithTheLatestValue) {
  helper.save("apiKey_openai", "first");
  helper.save("apiKey_openai", "second");
  EXPECT_THAT(keychain.items, ElementsAre(Pair(Pair("app.tavelle.Tavelle", "apiKey_openai"), "second")));
  EXPECT_EQ(helper.load("apiKey_openai"), "second");
}

TEST_F(KeychainHelperTest, loadsNothingThatWasNeverSaved) {
  EXPECT_EQ(helper.load("apiKey_openai"), std::nullopt);
}

TEST_F(KeychainHelperTest, deletesAndDoesNotMindWhatIsNotThere) {
  helper.save("a", "1");
  helper.save("b", "2");
  helper.remove("a");
  helper.remove("a");
  EXPECT_EQ(helper.load("a"), std::nullopt);
  EXPECT_EQ(helper.load("b"), "2");
}

TEST_F(KeychainHelperTest, keepsAnEmptyValue) {
  helper.save("a", "");
  EXPECT_EQ(helper.load("a"), "");
}

TEST_F(KeychainHelperTest, tellsTheStatusOfASaveThatFailedAndHasDeletedTheOldItem) {
  helper.save("a", "old");
  keychain.addStatus = errSecInteractionNotAllowed;
  try {
    helper.save("a", "new");
    FAIL() << "nothing was thrown";
  } catch (const KeychainError& error) {
    EXPECT_EQ(error.status(), -25308);
    EXPECT_EQ(error.errorDescription(), "Keychain save failed with status: -25308");
  }
  EXPECT_EQ(helper.load("a"), std::nullopt);
}

TEST_F(KeychainHelperTest, loadsNothingFromAKeychainThatRefuses) {
  helper.save("a", "1");
  keychain.copyStatus = errSecInteractionNotAllowed;
  EXPECT_EQ(helper.load("a"), std::nullopt);
}

TEST_F(KeychainHelperTest, takesOnlyUTF8) {
  keychain.items[{"app.tavelle.Tavelle", "a"}] = "\xFF";
  EXPECT_EQ(helper.load("a"), std::nullopt);
  helper.save("a", "\xFF\xFE");
  EXPECT_THAT(keychain.items, ElementsAre(Pair(testing::_, "\xFF"))) << "the keychain is not touched";
}

TEST_F(KeychainHelperTest, ignoresADeleteThatFails) {
  keychain.deleteStatus = errSecNotAvailable;
  helper.remove("a");
  helper.save("a", "1");
  EXPECT_EQ(helper.load("a"), "1");
}

}  // namespace
}  // namespace tavelle::tests
