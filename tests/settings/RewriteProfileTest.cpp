#include "settings/RewriteProfile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace tavelle::tests {
namespace {

using testing::ElementsAre;

RewriteProfile someProfile() {
  return {.id = *UUID::parse("00112233-4455-6677-8899-AABBCCDDEEFF"),
          .name = "Naïve \"quoted\" 😀\n",
          .keyCode = 15,
          .modifiers = 768,
          .systemPrompt = "Be brief."};
}

constexpr auto storedForm =
    R"([{"id":"00112233-4455-6677-8899-AABBCCDDEEFF","name":"n","keyCode":1,"modifiers":2,"systemPrompt":"p"}])";

std::string storedWith(std::string key, const std::string& value) {
  auto json = nlohmann::ordered_json::parse(storedForm);
  json[0][key] = nlohmann::ordered_json::parse(value);
  return json.dump();
}

TEST(RewriteProfile, isWrittenWithItsFiveKeysInOrder) {
  RewriteProfile profile = someProfile();
  profile.name = "n";
  EXPECT_EQ(
      encodeProfiles({profile}),
      R"([{"id":"00112233-4455-6677-8899-AABBCCDDEEFF","name":"n","keyCode":15,"modifiers":768,"systemPrompt":"Be brief."}])");
}

TEST(RewriteProfile, isTheSameAfterWritingAndReading) {
  RewriteProfile other = someProfile();
  other.id = UUID::random();
  other.keyCode = 4294967295;
  EXPECT_THAT(decodeProfiles(encodeProfiles({someProfile(), other})), ElementsAre(someProfile(), other));
}

TEST(RewriteProfile, isNotReadWithAKeyMissing) {
  for (const char* key : {"id", "name", "keyCode", "modifiers", "systemPrompt"}) {
    auto json = JSON::parse(storedForm);
    json[0].erase(key);
    EXPECT_THROW(decodeProfiles(json.dump()), JSONError) << key;
  }
}

TEST(RewriteProfile, isNotReadWithAValueOfAnotherType) {
  for (const char* key : {"id", "name", "systemPrompt"}) {
    EXPECT_THROW(decodeProfiles(storedWith(key, "5")), JSONError) << key;
    EXPECT_THROW(decodeProfiles(storedWith(key, "null")), JSONError) << key;
  }
  for (const char* key : {"keyCode", "modifiers"}) {
    for (const char* value : {"\"15\"", "null", "true", "1.5", "[]"}) {
      EXPECT_THROW(decodeProfiles(storedWith(key, value)), JSONError) << key << " " << value;
    }
  }
}

TEST(RewriteProfile, readsNumbersOfThirtyTwoBitsAndNoOthers) {
  for (const char* key : {"keyCode", "modifiers"}) {
    for (const char* value : {"-1", "4294967296", "1e300", "-9223372036854775808", "18446744073709551615"}) {
      EXPECT_THROW(decodeProfiles(storedWith(key, value)), JSONError) << key << " " << value;
    }
  }
  EXPECT_EQ(decodeProfiles(storedWith("keyCode", "4294967295"))[0].keyCode, 4294967295);
  EXPECT_EQ(decodeProfiles(storedWith("modifiers", "0"))[0].modifiers, 0);
}

TEST(RewriteProfile, isNotReadWithAnIdentifierThatIsNoUUID) {
  EXPECT_THROW(decodeProfiles(storedWith("id", "\"5\"")), JSONError);
}

TEST(RewriteProfile, isReadWithKeysThatNobodyKnows) {
  EXPECT_EQ(decodeProfiles(storedWith("colour", "\"blue\"")), decodeProfiles(storedForm));
}

TEST(RewriteProfile, readsKeysExactlyAsTheyAreSpelled) {
  auto json = JSON::parse(storedForm);
  json[0].erase("keyCode");
  json[0]["keycode"] = 1;
  EXPECT_THROW(decodeProfiles(json.dump()), JSONError);
}

TEST(RewriteProfile, readsAListAndNothingElse) {
  for (const char* text : {"", "{}", "5", "[5]", "[[]]", "nonsense", R"({"id":1})"}) {
    EXPECT_THROW(decodeProfiles(text), JSONError) << text;
  }
  EXPECT_THAT(decodeProfiles("[]"), ElementsAre());
}

TEST(RewriteProfile, isEqualOnlyWithAllFiveFieldsEqual) {
  EXPECT_EQ(someProfile(), someProfile());
  auto changed = someProfile();
  changed.id = UUID::random();
  EXPECT_NE(changed, someProfile());
  for (const auto change :
       {+[](RewriteProfile& p) { p.name += "x"; }, +[](RewriteProfile& p) { ++p.keyCode; },
        +[](RewriteProfile& p) { ++p.modifiers; }, +[](RewriteProfile& p) { p.systemPrompt = ""; }}) {
    changed = someProfile();
    change(changed);
    EXPECT_NE(changed, someProfile());
  }
}

TEST(RewriteProfile, cannotBeWrittenWithTextThatIsNotUnicode) {
  auto profile = someProfile();
  profile.name = "\xFF";
  EXPECT_THROW(encodeProfiles({profile}), JSONError);
}

TEST(RewriteProfile, hasADefaultPromptOfExactlyThisText) {
  EXPECT_EQ(defaultSystemPrompt,
            "You are a writing assistant. Reword the following text to improve clarity, grammar, and flow while "
            "preserving the original meaning and tone. Return ONLY the reworded text with no explanation, preamble, or "
            "quotes.");
  EXPECT_EQ(defaultSystemPrompt.size(), 212);
}

}  // namespace
}  // namespace tavelle::tests
