#include "llm/KeychainHelper.h"
#include "tests/platform/contracts/KeychainContract.h"
#include "tests/platform/macos/MacFixture.h"

namespace tavelle::tests {
namespace {

using testing::ElementsAre;

struct KeychainOverDoubles {
  KeychainOverDoubles() { resetSystem(); }
  ~KeychainOverDoubles() { EXPECT_EQ(liveObjects(), 0); }
  Keychain& keychain() { return mac; }
  MacKeychain mac;
};

INSTANTIATE_TYPED_TEST_SUITE_P(MacOverDoubles, KeychainContract, KeychainOverDoubles);

constexpr const char* item =
    "kSecClass: kSecClassGenericPassword, kSecAttrService: \"app.tavelle.Tavelle\", kSecAttrAccount: \"apiKey_openai\"";

class MacKeychainTest : public MacFixture {
 protected:
  KeychainHelper helper{platform.keychain()};
};

TEST_F(MacKeychainTest, savesByDeletingAndAddingAnItemThatIsReadableWhenUnlocked) {
  helper.save("apiKey_openai", "sk-1");
  EXPECT_THAT(calls(), ElementsAre("SecItemDelete({" + std::string{item} + "})",
                                   "SecItemAdd({" + std::string{item} +
                                       ", kSecValueData: <sk-1>, kSecAttrAccessible: kSecAttrAccessibleWhenUnlocked}, "
                                       "null)"));
}

TEST_F(MacKeychainTest, loadsTheDataOfOneItem) {
  system().passwords[{"app.tavelle.Tavelle", "apiKey_openai"}] = "sk-2";
  EXPECT_EQ(helper.load("apiKey_openai"), "sk-2");
  EXPECT_THAT(calls(), ElementsAre("SecItemCopyMatching({" + std::string{item} +
                                   ", kSecReturnData: true, kSecMatchLimit: kSecMatchLimitOne}, result)"));
}

TEST_F(MacKeychainTest, deletesByClassServiceAndAccount) {
  helper.remove("apiKey_openai");
  EXPECT_THAT(calls(), ElementsAre("SecItemDelete({" + std::string{item} + "})"));
}

TEST_F(MacKeychainTest, tellsTheSystemsStatusWhenAnItemCannotBeAdded) {
  system().statusesOfAdding = {errSecInteractionNotAllowed};
  try {
    helper.save("apiKey_openai", "sk-3");
    FAIL() << "nothing was thrown";
  } catch (const KeychainError& error) {
    EXPECT_EQ(error.errorDescription(), "Keychain save failed with status: -25308");
  }
}

TEST_F(MacKeychainTest, asksTheSystemNothingForANameThatIsNoText) {
  std::optional<Data> value;
  const KeychainItemQuery query{"app.tavelle.Tavelle", "\xFF"};
  EXPECT_EQ(platform.keychain().secItemAdd(query, "value", KeychainAccessible::whenUnlocked), paramErr);
  EXPECT_EQ(platform.keychain().secItemCopyMatching(query, value), paramErr);
  EXPECT_EQ(platform.keychain().secItemDelete(query), paramErr);
  EXPECT_THAT(calls(), testing::IsEmpty());
}

}  // namespace
}  // namespace tavelle::tests
