#include "ui/TavelleAccountSection.h"

#include "llm/JSON.h"
#include "tests/ui/UIFixture.h"
#include "ui/ProviderSettingsTab.h"

namespace tavelle::tests {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr auto hint = "Check your email for a login link.";

class TavelleAccountSectionTest : public UIFixture {
 protected:
  void SetUp() override { show<TavelleAccountSection>(); }

  static TavelleAccountManager& account() { return TavelleAccountManager::shared(); }

  // The person opens the link in the e-mail.
  void signIn(const std::string& with) {
    account().handleAuthCallback(URL::parse("tavelle://auth?token=" + with).value());
    settle();
  }

  // {"email":"someone@example.com"}
  const std::string token = "e30.eyJlbWFpbCI6InNvbWVvbmVAZXhhbXBsZS5jb20ifQ.c2ln";
};

TEST_F(TavelleAccountSectionTest, asksForAnAddressWhileNobodyIsSignedIn) {
  EXPECT_THAT(section(0), ElementsAre("Account", "Email:", "Send Login Link"));
}

TEST_F(TavelleAccountSectionTest, enablesItsButtonWithTheFirstCharacterOfAnAddress) {
  EXPECT_FALSE(screen->widget("Send Login Link").isEnabled());
  screen->focus(screen->widget("Email:"));
  type("x");
  EXPECT_TRUE(screen->widget("Send Login Link").isEnabled());
  enter("Email:", "");
  EXPECT_FALSE(screen->widget("Send Login Link").isEnabled());
}

TEST_F(TavelleAccountSectionTest, isBusyWhileTheRequestIsInFlight) {
  enter("Email:", "someone@example.com");
  press("Send Login Link");
  EXPECT_THAT(section(0), ElementsAre("Account", "Email:", "Sending..."));
  EXPECT_FALSE(screen->widget("Sending...").isEnabled());
  platform.sharedNetwork.answer(200, "");
  settle();
  EXPECT_THAT(section(0), ElementsAre("Account", "Email:", "Send Login Link", hint));
  EXPECT_TRUE(screen->widget("Send Login Link").isEnabled());
  EXPECT_EQ(styleOf(hint, Attribute::color), "secondary");
  EXPECT_EQ(styleOf(hint, Attribute::font), "caption");
}

TEST_F(TavelleAccountSectionTest, sendsTheAddressAsItWasEntered) {
  enter("Email:", " no address ");
  press("Send Login Link");
  ASSERT_THAT(platform.sharedNetwork.requests, SizeIs(1));
  EXPECT_EQ(decodeJSON(platform.sharedNetwork.requests[0].body), JSON({{"email", " no address "}}));
}

TEST_F(TavelleAccountSectionTest, givesTheHintAlsoAfterARequestThatFailed) {
  enter("Email:", "x");
  platform.sharedNetwork.answer(400, "bad email");
  press("Send Login Link");
  EXPECT_THAT(section(0), ElementsAre("Account", "Email:", "Send Login Link", hint)) << "and nothing of the error";
}

TEST_F(TavelleAccountSectionTest, showsWhoIsSignedIn) {
  signIn(token);
  EXPECT_THAT(section(0), ElementsAre("Account", "Email", "someone@example.com", "Sign Out"));
  EXPECT_EQ(styleOf("someone@example.com", Attribute::color), "secondary");
  const auto& rows = screen->widget(NodeType::section).children;
  ASSERT_THAT(rows, SizeIs(2));
  EXPECT_EQ(rows[0]->children[1]->type, NodeType::spacer);
  EXPECT_EQ(rows[1]->children[0]->type, NodeType::spacer);
}

TEST_F(TavelleAccountSectionTest, showsAnEmptyValueForAnAddressThatIsNotKnown) {
  signIn("opaque");
  EXPECT_THAT(section(0), ElementsAre("Account", "Email", "Sign Out"));
  EXPECT_EQ(screen->widget(NodeType::stack).children[2]->string(Attribute::text), "");
}

TEST_F(TavelleAccountSectionTest, comesBackWithTheEarlierAddressAndHintAfterSigningOut) {
  enter("Email:", "someone@example.com");
  platform.sharedNetwork.answer(200, "");
  press("Send Login Link");
  signIn(token);
  press("Sign Out");
  EXPECT_FALSE(account().isSignedIn());
  EXPECT_THAT(section(0), ElementsAre("Account", "Email:", "Send Login Link", hint));
  EXPECT_EQ(screen->value("Email:"), "someone@example.com");
}

TEST_F(TavelleAccountSectionTest, startsAfreshWhenThePersonChoosesAnotherProviderAndComesBack) {
  settings().setProvider(LLMProvider::tavelle);
  show<ProviderSettingsTab>();
  enter("Email:", "someone@example.com");
  platform.sharedNetwork.answer(200, "");
  press("Send Login Link");
  EXPECT_TRUE(screen->shows(hint));
  choose(NodeType::picker, "ollama");
  choose(NodeType::picker, "tavelle");
  EXPECT_EQ(screen->value("Email:"), "");
  EXPECT_FALSE(screen->shows(hint));
}

TEST_F(TavelleAccountSectionTest, mayBeGoneWhenTheRequestEnds) {
  enter("Email:", "x");
  press("Send Login Link");
  reconciler.reset();
  platform.sharedNetwork.answer(200, "");
  settle();
  EXPECT_FALSE(account().isLoading());
}

}  // namespace
}  // namespace tavelle::tests
