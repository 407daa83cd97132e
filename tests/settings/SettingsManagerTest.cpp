#include "settings/SettingsManager.h"

#include "platform/fake/FakePlatform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace tavelle::tests {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class SettingsManagerTest : public testing::Test {
 protected:
  SettingsManager load() { return SettingsManager{defaults, KeychainHelper{keychain}}; }
  std::vector<RewriteProfile> storedProfiles() {
    return decodeProfiles(std::get<DataValue>(defaults.values.at("rewriteProfiles")).bytes);
  }
  std::string storedString(const std::string& key) { return std::get<std::string>(defaults.values.at(key)); }
  Data& keyOf(const std::string& provider) { return keychain.items[{"app.tavelle.Tavelle", "apiKey_" + provider}]; }

  FakeUserDefaults defaults;
  FakeKeychain keychain;
};

TEST_F(SettingsManagerTest, startsWithTheDefaultsWhereNothingIsStored) {
  const auto settings = load();
  EXPECT_EQ(settings.provider(), LLMProvider::openAI);
  EXPECT_EQ(settings.model(), "gpt-4o");
  EXPECT_EQ(settings.baseURL(), LLMProvider{LLMProvider::openAI}.defaultBaseURL());
  EXPECT_EQ(settings.temperature(), 0.7);
  ASSERT_THAT(settings.profiles(), SizeIs(1));
  const auto& profile = settings.profiles()[0];
  EXPECT_EQ(profile.name, "Reword");
  EXPECT_EQ(profile.keyCode, 15);
  EXPECT_EQ(profile.modifiers, 768);
  EXPECT_EQ(profile.systemPrompt, defaultSystemPrompt);
  EXPECT_NE(profile.id, UUID{});

  EXPECT_EQ(storedProfiles(), settings.profiles());
  EXPECT_THAT(defaults.writes, ElementsAre("rewriteProfiles"));
  EXPECT_THAT(defaults.values, SizeIs(1));
}

TEST_F(SettingsManagerTest, takesOverTheLayoutWithASingleHotkey) {
  defaults.values = {{"hotkeyKeyCode", std::int64_t{2}},
                     {"hotkeyModifiers", std::int64_t{4096}},
                     {"systemPrompt", std::string{"Be brief."}}};
  const auto settings = load();
  ASSERT_THAT(settings.profiles(), SizeIs(1));
  EXPECT_EQ(settings.profiles()[0].name, "Reword");
  EXPECT_EQ(settings.profiles()[0].keyCode, 2);
  EXPECT_EQ(settings.profiles()[0].modifiers, 4096);
  EXPECT_EQ(settings.profiles()[0].systemPrompt, "Be brief.");
  EXPECT_EQ(storedProfiles(), settings.profiles());
  EXPECT_THAT(defaults.values, SizeIs(1)) << "the old keys are gone";
}

TEST_F(SettingsManagerTest, takesDefaultsForOldValuesOfAnotherType) {
  defaults.values = {
      {"hotkeyKeyCode", std::string{"2"}}, {"hotkeyModifiers", 4096.5}, {"systemPrompt", std::int64_t{1}}};
  const auto settings = load();
  EXPECT_EQ(settings.profiles()[0].keyCode, 15);
  EXPECT_EQ(settings.profiles()[0].modifiers, 768);
  EXPECT_EQ(settings.profiles()[0].systemPrompt, defaultSystemPrompt);
}

TEST_F(SettingsManagerTest, takesAnOldValueThatIsWholeHoweverItWasStored) {
  defaults.values = {{"hotkeyKeyCode", 2.0}};
  EXPECT_EQ(load().profiles()[0].keyCode, 2);
}

TEST_F(SettingsManagerTest, takesDefaultsForOldNumbersThatNoWholeNumberHolds) {
  for (const double number : {1e19, -1e19, std::numeric_limits<double>::infinity(), std::nan("")}) {
    defaults.values = {{"hotkeyKeyCode", number}};
    EXPECT_EQ(load().profiles()[0].keyCode, 15) << number;
  }
}

TEST_F(SettingsManagerTest, takesTheLargestOldValues) {
  defaults.values = {{"hotkeyKeyCode", std::int64_t{4294967295}}, {"hotkeyModifiers", std::int64_t{0}}};
  EXPECT_EQ(load().profiles()[0].keyCode, 4294967295);
}

using SettingsManagerDeathTest = SettingsManagerTest;

TEST_F(SettingsManagerDeathTest, endsTheProcessOnOldValuesOutOfRange) {
  defaults.values = {{"hotkeyKeyCode", std::int64_t{-1}}};
  EXPECT_DEATH(load(), "\"hotkeyKeyCode\" is out of range: -1");
  defaults.values = {{"hotkeyModifiers", std::int64_t{4294967296}}};
  EXPECT_DEATH(load(), "\"hotkeyModifiers\" is out of range: 4294967296");
  defaults.values = {{"hotkeyKeyCode", 1e16}};
  EXPECT_DEATH(load(), "\"hotkeyKeyCode\" is out of range: 10000000000000000");
}

TEST_F(SettingsManagerTest, treatsAnEmptyListLikeNoList) {
  defaults.values = {{"rewriteProfiles", DataValue{"[]"}}};
  const auto settings = load();
  EXPECT_THAT(settings.profiles(), SizeIs(1));
  EXPECT_EQ(storedProfiles(), settings.profiles());
  EXPECT_EQ(defaults.objectForKey("damagedRewriteProfiles"), std::nullopt);
}

TEST_F(SettingsManagerTest, treatsAListThatCannotBeReadLikeNoListAndKeepsItBesideTheNewOne) {
  for (const DefaultsValue& stored : {DefaultsValue{DataValue{"nonsense"}}, DefaultsValue{DataValue{R"([{"id":1}])"}},
                                      DefaultsValue{std::string{"[]"}}, DefaultsValue{std::int64_t{5}}}) {
    defaults.values = {{"rewriteProfiles", stored}, {"systemPrompt", std::string{"kept"}}};
    const auto settings = load();
    ASSERT_THAT(settings.profiles(), SizeIs(1));
    EXPECT_EQ(settings.profiles()[0].systemPrompt, "kept");
    EXPECT_EQ(storedProfiles(), settings.profiles());
    EXPECT_EQ(defaults.objectForKey("damagedRewriteProfiles"), stored);
  }
}

TEST_F(SettingsManagerTest, usesAStoredListAndLeavesOldKeysAlone) {
  const RewriteProfile profile{UUID::random(), "Mine", 1, 256, "p"};
  defaults.values = {{"rewriteProfiles", DataValue{encodeProfiles({profile, profile})}},
                     {"hotkeyKeyCode", std::int64_t{2}}};
  EXPECT_THAT(load().profiles(), ElementsAre(profile, profile));
  EXPECT_TRUE(defaults.values.contains("hotkeyKeyCode"));
  EXPECT_THAT(defaults.writes, IsEmpty());
}

TEST_F(SettingsManagerTest, fallsBackFromAnUnknownProviderAndLeavesItStored) {
  defaults.values = {{"provider", std::string{"openAI"}}};
  auto settings = load();
  EXPECT_EQ(settings.provider(), LLMProvider::openAI);
  EXPECT_EQ(storedString("provider"), "openAI");
  settings.setProvider(LLMProvider::gemini);
  EXPECT_EQ(storedString("provider"), "gemini");
}

TEST_F(SettingsManagerTest, readsWhatWasStored) {
  defaults.values = {{"provider", std::string{"ollama"}},
                     {"model", std::string{}},
                     {"baseURL", std::string{"http://localhost/v1"}},
                     {"temperature", 1.5}};
  const auto settings = load();
  EXPECT_EQ(settings.provider(), LLMProvider::ollama);
  EXPECT_EQ(settings.model(), "");
  EXPECT_EQ(settings.baseURL(), "http://localhost/v1");
  EXPECT_EQ(settings.temperature(), 1.5);
}

TEST_F(SettingsManagerTest, readsAWholeTemperatureAndNoText) {
  defaults.values = {{"temperature", std::int64_t{1}}};
  EXPECT_EQ(load().temperature(), 1.0);
  defaults.values = {{"temperature", std::string{"1.0"}}};
  EXPECT_EQ(load().temperature(), 0.7);
}

TEST_F(SettingsManagerTest, storesEveryChangeAtOnce) {
  auto settings = load();
  settings.setProvider(LLMProvider::custom);
  settings.setModel("m");
  settings.setBaseURL("u");
  settings.setTemperature(1);
  EXPECT_EQ(storedString("provider"), "custom");
  EXPECT_EQ(storedString("model"), "m");
  EXPECT_EQ(storedString("baseURL"), "u");
  EXPECT_EQ(defaults.values.at("temperature"), DefaultsValue{1.0});
}

TEST_F(SettingsManagerTest, storesTheWholeListForEachChangeOfAProfile) {
  auto settings = load();
  defaults.writes.clear();
  for (const std::uint32_t keyCode : {1U, 2U}) {
    auto profiles = settings.profiles();
    profiles[0].keyCode = keyCode;
    settings.setProfiles(profiles);
    EXPECT_EQ(storedProfiles(), profiles);
  }
  EXPECT_THAT(defaults.writes, ElementsAre("rewriteProfiles", "rewriteProfiles"));
}

TEST_F(SettingsManagerTest, leavesTheStoredListWhereTheNewOneCannotBeWritten) {
  auto settings = load();
  const auto before = storedProfiles();
  auto profiles = settings.profiles();
  profiles[0].name = "\xFF";
  settings.setProfiles(profiles);
  EXPECT_EQ(storedProfiles(), before);
  EXPECT_EQ(settings.profiles(), profiles);
}

TEST_F(SettingsManagerTest, tellsItsObserversBeforeTheValueChangesAndStoresItAfterwards) {
  auto settings = load();
  std::vector<std::string> heard;
  const auto token = settings.objectWillChange().subscribe(
      [&] { heard.push_back(settings.model() + (defaults.values.contains("model") ? " stored" : " not stored")); });
  settings.setModel("new");
  EXPECT_THAT(heard, ElementsAre("gpt-4o not stored"));
  EXPECT_EQ(settings.model(), "new");
}

TEST_F(SettingsManagerTest, tellsItsObserversOfEachPropertyAndOfTheKey) {
  auto settings = load();
  int changes = 0;
  const auto token = settings.objectWillChange().subscribe([&] { ++changes; });
  settings.setProvider(LLMProvider::custom);
  settings.setModel("m");
  settings.setBaseURL("u");
  settings.setTemperature(1);
  settings.setProfiles({});
  settings.setAPIKey("k");
  settings.setAPIKey("");
  EXPECT_EQ(changes, 7);
}

TEST_F(SettingsManagerTest, publishesTheSequenceOfProfileLists) {
  auto settings = load();
  const auto first = settings.profiles();
  std::vector<std::vector<RewriteProfile>> lists;
  const auto token = settings.publishedProfiles().subscribe([&](const auto& list) { lists.push_back(list); });
  settings.setProfiles({});
  EXPECT_THAT(lists, ElementsAre(first, std::vector<RewriteProfile>{}));
}

TEST_F(SettingsManagerTest, hasOneKeyForEachProvider) {
  auto settings = load();
  settings.setAPIKey("openai key");
  settings.setProvider(LLMProvider::anthropic);
  EXPECT_EQ(settings.apiKey(), "");
  settings.setAPIKey("anthropic key");
  EXPECT_EQ(keyOf("openai"), "openai key");
  EXPECT_EQ(keyOf("anthropic"), "anthropic key");
  settings.setProvider(LLMProvider::openAI);
  EXPECT_EQ(settings.apiKey(), "openai key");
}

TEST_F(SettingsManagerTest, changesNothingElseWithTheProvider) {
  auto settings = load();
  settings.setModel("m");
  settings.setBaseURL("u");
  settings.setProvider(LLMProvider::anthropic);
  EXPECT_EQ(settings.model(), "m");
  EXPECT_EQ(settings.baseURL(), "u");
}

TEST_F(SettingsManagerTest, deletesTheCurrentProvidersKeyOnly) {
  auto settings = load();
  keyOf("openai") = "a";
  keyOf("gemini") = "b";
  settings.setAPIKey("");
  EXPECT_THAT(keychain.items, SizeIs(1));
  EXPECT_EQ(keyOf("gemini"), "b");
}

TEST_F(SettingsManagerTest, keepsQuietWhenAKeyCannotBeSaved) {
  auto settings = load();
  keychain.addStatus = errSecInteractionNotAllowed;
  int changes = 0;
  const auto token = settings.objectWillChange().subscribe([&] { ++changes; });
  settings.setAPIKey("k");
  EXPECT_EQ(settings.apiKey(), "");
  EXPECT_EQ(changes, 1);
}

TEST_F(SettingsManagerTest, neverPutsAKeyIntoTheDefaults) {
  auto settings = load();
  defaults.writes.clear();
  settings.setAPIKey("k");
  EXPECT_THAT(defaults.writes, IsEmpty());
}

TEST(SettingsManagerShared, isTheOneInstanceOnThePlatformInUse) {
  FakePlatform platform;
  const Platform::Use use{platform};
  SettingsManager::shared().setModel("m");
  EXPECT_EQ(SettingsManager::shared().model(), "m");
  EXPECT_EQ(platform.defaults.values.at("model"), DefaultsValue{std::string{"m"}});
}

}  // namespace
}  // namespace tavelle::tests
