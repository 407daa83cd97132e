#include "ui/ProviderSettingsTab.h"

#include "llm/JSON.h"
#include "tests/ui/UIFixture.h"

#include <array>

namespace tavelle::tests {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Pair;
using testing::SizeIs;

class ProviderSettingsTabTest : public UIFixture {
 protected:
  void SetUp() override { show<ProviderSettingsTab>(); }

  void chooseProvider(LLMProvider provider) { choose(NodeType::picker, provider.rawValue()); }

  void storeKey(const std::string& provider, Data key) { platform.secrets.items[item(provider)] = std::move(key); }
  std::optional<std::string> storedKey(const std::string& provider) {
    const auto found = platform.secrets.items.find(item(provider));
    return found == platform.secrets.items.end() ? std::nullopt : std::optional{found->second};
  }

  void answerWith(const std::string& content) {
    platform.network.answer(200, encodeJSON({{"choices", {{{"message", {{"content", content}}}}}}}));
  }
  void test() {
    press("Test Connection");
    platform.loop.runToEnd();
  }
  std::string keyField() { return screen->value("API Key:"); }
  const URLRequest& request() { return platform.network.requests.back(); }

  // What the test section shows beside its button; empty for nothing.
  std::string result() {
    const auto words = section(2);
    return words.size() > 1 ? words[1] : "";
  }

 private:
  static std::pair<std::string, std::string> item(const std::string& provider) {
    return {"app.tavelle.Tavelle", "apiKey_" + provider};
  }
};

TEST_F(ProviderSettingsTabTest, showsItsSectionsInOrder) {
  EXPECT_EQ(screen->all(NodeType::section).size(), 3);
  EXPECT_THAT(section(0),
              ElementsAre("Provider", "Provider:", "Tavelle", "OpenAI", "Anthropic", "Gemini", "Ollama", "Custom"));
  EXPECT_THAT(section(1), ElementsAre("Connection", "Base URL:", "Model:", "API Key:"));
  EXPECT_THAT(section(2), ElementsAre("Test Connection"));
}

TEST_F(ProviderSettingsTabTest, tagsEachProviderWithItsRawValue) {
  const auto& picker = screen->widget(NodeType::picker);
  std::vector<std::string> tags;
  for (const auto& option : picker.children) tags.push_back(option->string(Attribute::tag));
  EXPECT_THAT(tags, ElementsAre("tavelle", "openai", "anthropic", "gemini", "ollama", "custom"));
  EXPECT_EQ(picker.string(Attribute::value), "openai");
}

TEST_F(ProviderSettingsTabTest, showsAndStoresBaseURLAndModelAsTheyAreTyped) {
  EXPECT_EQ(screen->value("Base URL:"), settings().baseURL());
  EXPECT_EQ(screen->value("Model:"), "gpt-4o");
  screen->focus(screen->widget("Model:"));
  screen->moveCursor(6);
  type("-mini");
  EXPECT_EQ(settings().model(), "gpt-4o-mini");
  enter("Base URL:", "");
  EXPECT_EQ(settings().baseURL(), "");
}

TEST_F(ProviderSettingsTabTest, hasAKeyFieldOnlyForProvidersThatRequireAKey) {
  for (const auto provider : LLMProvider::allCases()) {
    chooseProvider(provider);
    EXPECT_EQ(screen->shows("API Key:"), provider.requiresAPIKey()) << provider.rawValue();
  }
}

TEST_F(ProviderSettingsTabTest, masksTheKey) {
  EXPECT_EQ(screen->widget("API Key:").type, NodeType::secureField);
}

TEST_F(ProviderSettingsTabTest, presetsBaseURLAndModelOfEveryProviderThatIsChosen) {
  for (const auto provider : LLMProvider::allCases()) {
    if (provider == settings().provider()) continue;
    settings().setBaseURL("typed");
    settings().setModel("typed");
    chooseProvider(provider);
    EXPECT_EQ(settings().provider(), provider);
    EXPECT_EQ(settings().baseURL(), provider.defaultBaseURL());
    EXPECT_EQ(settings().model(), provider.defaultModel());
  }
}

TEST_F(ProviderSettingsTabTest, emptiesBaseURLAndModelForACustomProvider) {
  chooseProvider(LLMProvider::custom);
  EXPECT_EQ(screen->value("Base URL:"), "");
  EXPECT_EQ(screen->value("Model:"), "");
}

TEST_F(ProviderSettingsTabTest, keepsWhatWasTypedWhenTheSameProviderIsChosenAgain) {
  enter("Model:", "typed");
  platform.defaults.writes.clear();
  chooseProvider(LLMProvider::openAI);
  EXPECT_EQ(settings().model(), "typed");
  EXPECT_THAT(platform.defaults.writes, IsEmpty());
}

TEST_F(ProviderSettingsTabTest, storesProviderThenBaseURLThenModel) {
  platform.defaults.writes.clear();
  chooseProvider(LLMProvider::gemini);
  EXPECT_THAT(platform.defaults.writes, ElementsAre("provider", "baseURL", "model"));
}

TEST_F(ProviderSettingsTabTest, showsTheStoredKeyAsItAppearsAndStoresItAgain) {
  storeKey("openai", "sk-1");
  int changes = 0;
  const auto token = SettingsManager::shared().objectWillChange().subscribe([&changes] { ++changes; });
  show<ProviderSettingsTab>();
  EXPECT_EQ(keyField(), "sk-1");
  EXPECT_EQ(storedKey("openai"), "sk-1");
  EXPECT_EQ(changes, 1);
}

TEST_F(ProviderSettingsTabTest, storesNothingWhereThereSeemsToBeNoKey) {
  int changes = 0;
  const auto token = SettingsManager::shared().objectWillChange().subscribe([&changes] { ++changes; });
  show<ProviderSettingsTab>();
  EXPECT_EQ(keyField(), "");
  EXPECT_EQ(changes, 0) << "the keyring may only be locked";
}

TEST_F(ProviderSettingsTabTest, storesTheKeyAsItIsTypedUnderTheCurrentProvider) {
  screen->focus(screen->widget("API Key:"));
  type("sk");
  EXPECT_EQ(storedKey("openai"), "sk");
  EXPECT_EQ(keyField(), "sk");
  enter("API Key:", "sk-pasted\n");
  EXPECT_EQ(storedKey("openai"), "sk-pasted\n") << "as typed";
}

TEST_F(ProviderSettingsTabTest, deletesTheStoredKeyWhenTheFieldIsCleared) {
  storeKey("openai", "sk-1");
  storeKey("anthropic", "sk-2");
  show<ProviderSettingsTab>();
  enter("API Key:", "");
  EXPECT_EQ(storedKey("openai"), std::nullopt);
  EXPECT_EQ(storedKey("anthropic"), "sk-2");
}

TEST_F(ProviderSettingsTabTest, fillsTheFieldWithTheStoredKeyOfTheProviderThatIsChosen) {
  storeKey("openai", "sk-1");
  storeKey("anthropic", "sk-2");
  show<ProviderSettingsTab>();
  chooseProvider(LLMProvider::anthropic);
  EXPECT_EQ(keyField(), "sk-2");
  chooseProvider(LLMProvider::gemini);
  EXPECT_EQ(keyField(), "") << "there is none";
}

TEST_F(ProviderSettingsTabTest, leavesEveryStoredKeyAsItIsThroughFiftyChangesOfProvider) {
  storeKey("openai", "sk-1");
  storeKey("anthropic", "sk-2");
  storeKey("gemini", "sk-3");
  show<ProviderSettingsTab>();
  const auto before = platform.secrets.items;
  const auto& all = LLMProvider::allCases();
  for (std::size_t turn = 0; turn < 50; ++turn) chooseProvider(all[turn * 5 % all.size()]);
  EXPECT_EQ(platform.secrets.items, before);
}

TEST_F(ProviderSettingsTabTest, keepsAKeyThatCouldNotBeReadWhenItsProviderIsChosen) {
  storeKey("openai", "sk-1");
  storeKey("anthropic", "sk-2");
  show<ProviderSettingsTab>();
  platform.secrets.copyStatus = errSecInteractionNotAllowed;  // and by the next call, it is unlocked
  chooseProvider(LLMProvider::anthropic);
  EXPECT_EQ(keyField(), "");
  EXPECT_EQ(storedKey("anthropic"), "sk-2");
}

TEST_F(ProviderSettingsTabTest, doesNotGiveAKeyThatIsTypedForOneProviderToAnother) {
  storeKey("anthropic", "sk-2");
  const auto field = screen->widget("API Key:").node;
  screen->choose(screen->widget(NodeType::picker), "anthropic");
  reconciler->dispatch({field, 100, view::Edited{"sk-1"}});  // typed before the renderer knew
  settle();
  EXPECT_EQ(storedKey("anthropic"), "sk-2");
  EXPECT_EQ(keyField(), "sk-2");
}

TEST_F(ProviderSettingsTabTest, keepsTheTypedKeyInTheFieldWhereTheKeychainRefusesIt) {
  platform.secrets.addStatus = errSecInteractionNotAllowed;
  screen->focus(screen->widget("API Key:"));
  type("sk-1");
  EXPECT_EQ(keyField(), "sk-1");
  EXPECT_EQ(storedKey("openai"), std::nullopt);
}

TEST_F(ProviderSettingsTabTest, choosingOllamaHidesTheKeyFieldAndATestPassesItsUnchangedText) {
  enter("API Key:", "sk-1");
  chooseProvider(LLMProvider::ollama);
  EXPECT_EQ(settings().model(), "llama3.2");
  EXPECT_EQ(settings().baseURL(), "http://localhost:11434/v1");
  EXPECT_FALSE(screen->shows("API Key:"));
  answerWith("Hello world");
  test();
  EXPECT_THAT(request().headers, testing::Contains(Pair("Authorization", "Bearer sk-1")));
  chooseProvider(LLMProvider::openAI);
  EXPECT_EQ(keyField(), "sk-1");
}

TEST_F(ProviderSettingsTabTest, choosingTavelleShowsTheAccountInPlaceOfTheConnectionAndTestsTheHostedCall) {
  chooseProvider(LLMProvider::tavelle);
  EXPECT_FALSE(screen->shows("Connection"));
  EXPECT_THAT(section(1), ElementsAre("Account", "Email:", "Send Login Link"));
  EXPECT_THAT(section(2), ElementsAre("Test Connection"));
  test();
  EXPECT_THAT(platform.network.requests, IsEmpty()) << "nobody is signed in";
  EXPECT_EQ(result(), "Error: Sign in to Tavelle required");
}

TEST_F(ProviderSettingsTabTest, sendsOneFixedRequestWithWhatIsSet) {
  enter("Model:", "some-model");
  enter("Base URL:", "http://host/v1");
  enter("API Key:", "sk-1");
  settings().setTemperature(1.5);
  answerWith("Hello world");
  test();
  EXPECT_EQ(request().url.absoluteString(), "http://host/v1/chat/completions");
  const auto body = decodeJSON(request().body);
  EXPECT_EQ(body["model"], "some-model");
  EXPECT_EQ(body["temperature"], 0.0);
  EXPECT_EQ(body["messages"][0]["content"], "Repeat the input exactly.");
  EXPECT_EQ(body["messages"][1]["content"], "Hello world");
  EXPECT_THAT(request().headers, testing::Contains(Pair("Authorization", "Bearer sk-1")));
}

TEST_F(ProviderSettingsTabTest, passesTheFieldsTextAndNotTheStoredKey) {
  enter("API Key:", "typed");
  storeKey("openai", "changed elsewhere");
  answerWith("Hello world");
  test();
  EXPECT_THAT(request().headers, testing::Contains(Pair("Authorization", "Bearer typed")));
}

TEST_F(ProviderSettingsTabTest, showsASuccessInGreen) {
  answerWith("Hello world");
  test();
  EXPECT_EQ(result(), "Success: \"Hello world\"");
  EXPECT_EQ(styleOf(result(), Attribute::color), "green");
  EXPECT_EQ(styleOf(result(), Attribute::font), "caption");
}

TEST_F(ProviderSettingsTabTest, showsAnErrorInRed) {
  platform.network.answer(401, "no such key");
  test();
  EXPECT_EQ(result(), "Error: API error (401): no such key");
  EXPECT_EQ(styleOf(result(), Attribute::color), "red");
  EXPECT_EQ(styleOf(result(), Attribute::font), "caption");
}

TEST_F(ProviderSettingsTabTest, showsTheFirst50CharactersOfAReply) {
  answerWith(std::string(60, 'a'));
  test();
  EXPECT_EQ(result(), "Success: \"" + std::string(50, 'a') + "\"");
  std::string flags;
  for (int count = 0; count < 60; ++count) flags += "🇫🇷";
  answerWith(flags);
  test();
  EXPECT_EQ(result(), "Success: \"" + flags.substr(0, flags.size() / 60 * 50) + "\"");
}

TEST_F(ProviderSettingsTabTest, showsTheFirst80CharactersOfAnError) {
  platform.network.fail({URLError::Code::cannotConnectToHost, std::string(100, 'e')});
  test();
  EXPECT_EQ(result(), "Error: " + std::string(80, 'e'));
}

TEST_F(ProviderSettingsTabTest, clearsThePreviousResultAtOnce) {
  answerWith("Hello world");
  test();
  ASSERT_FALSE(result().empty());
  press("Test Connection");
  EXPECT_EQ(result(), "");
  EXPECT_THAT(section(2), ElementsAre("Testing..."));
}

TEST_F(ProviderSettingsTabTest, runsOneTestAtATime) {
  press("Test Connection");
  EXPECT_FALSE(screen->widget("Testing...").isEnabled());
  EXPECT_TRUE(*screen->widget("Testing...").attributes.get<bool>(Attribute::busy));
  const auto button = screen->widget("Testing...").node;
  reconciler->dispatch({button, 100, view::Pressed{}});  // pressed before the renderer knew
  settle();
  EXPECT_THAT(platform.network.requests, SizeIs(1));
  answerWith("Hello world");
  platform.loop.runToEnd();
  EXPECT_TRUE(screen->widget("Test Connection").isEnabled());
  EXPECT_EQ(result(), "Success: \"Hello world\"");
}

TEST_F(ProviderSettingsTabTest, keepsItsButtonThroughATest) {
  const auto button = screen->widget("Test Connection").node;
  answerWith("Hello world");
  test();
  EXPECT_EQ(screen->widget("Test Connection").node, button) << "and with it the focus";
}

TEST_F(ProviderSettingsTabTest, keepsTheLastResultWhenAnotherProviderIsChosen) {
  answerWith("Hello world");
  test();
  const auto button = screen->widget("Test Connection").node;
  chooseProvider(LLMProvider::tavelle);
  EXPECT_EQ(result(), "Success: \"Hello world\"");
  EXPECT_EQ(screen->widget("Test Connection").node, button);
}

TEST_F(ProviderSettingsTabTest, reportsWhateverAnEmptyBaseURLComesTo) {
  chooseProvider(LLMProvider::custom);
  platform.network.fail({URLError::Code::unsupportedURL, "unsupported URL"});
  test();
  EXPECT_EQ(result(), "Error: unsupported URL");
}

TEST_F(ProviderSettingsTabTest, startsAfreshWhileAnEarlierTestIsStillInFlight) {
  press("Test Connection");
  show<ProviderSettingsTab>();
  EXPECT_THAT(section(2), ElementsAre("Test Connection"));
  answerWith("too late");
  platform.loop.runToEnd();
  EXPECT_EQ(result(), "");
}

TEST_F(ProviderSettingsTabTest, hasNoTemperature) {
  EXPECT_THAT(screen->all(NodeType::slider), IsEmpty());
}

}  // namespace
}  // namespace tavelle::tests
