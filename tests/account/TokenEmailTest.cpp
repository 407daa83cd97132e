// The address that a token tells of its owner.

#include "tests/account/AccountFixture.h"
#include "tests/support/Base64Text.h"

#include <string_view>

namespace tavelle::tests {
namespace {

std::string base64URL(std::string_view bytes) {
  return unpaddedBase64(bytes, base64URLAlphabet);
}

class TokenEmail : public AccountFixture {
 protected:
  // What the session shows once this token is in the keychain.
  std::optional<std::string> emailOf(const std::string& token) {
    platform.secrets.items[item] = token;
    const auto started = makeAccount();
    EXPECT_TRUE(started.isSignedIn()) << "any token signs in";
    return started.email();
  }
  std::optional<std::string> emailOfPayload(std::string_view payload) {
    return emailOf("header." + base64URL(payload) + ".signature");
  }
};

TEST_F(TokenEmail, isTheMemberEmailOfThePayload) {
  EXPECT_EQ(emailOfPayload(R"({"sub":"x","email":"someone"})"), "someone");
  EXPECT_EQ(emailOfPayload(R"({"email":""})"), "");
}

TEST_F(TokenEmail, isNoneWithoutSuchAString) {
  for (const char* payload : {R"({"email": 42})", R"({"email":null})", R"({"email":["a"]})", R"({"Email":"a"})", "{}"})
    EXPECT_EQ(emailOfPayload(payload), std::nullopt) << payload;
}

TEST_F(TokenEmail, isNoneWhereThePayloadIsNoJSONObject) {
  for (const char* payload : {"no JSON", "[\"email\"]", "\"email\"", "42", "null", "{\"email\":\"a\"", "\xFF",
                              "{\"email\":\"\xFF\"}", "{\"email\":\"a\"}x"})
    EXPECT_EQ(emailOfPayload(payload), std::nullopt) << payload;
}

TEST_F(TokenEmail, needsThreePiecesNotCountingEmptyOnes) {
  const std::string payload = base64URL(R"({"email":"someone"})");
  EXPECT_EQ(emailOf("a.b.c.d"), std::nullopt);
  EXPECT_EQ(emailOf("a." + payload + ".c.d"), std::nullopt);
  EXPECT_EQ(emailOf("a..c"), std::nullopt);
  EXPECT_EQ(emailOf("a." + payload), std::nullopt);
  EXPECT_EQ(emailOf(payload), std::nullopt);
  EXPECT_EQ(emailOf("..."), std::nullopt);
  EXPECT_EQ(emailOf(""), std::nullopt);
  EXPECT_EQ(emailOf(".a.." + payload + ".c."), "someone");
}

TEST_F(TokenEmail, isReadWithEveryPaddingThatBase64URLLeavesOut) {
  EXPECT_EQ(base64URL(R"({"email":"abc"})").size() % 4, 0);
  EXPECT_EQ(emailOfPayload(R"({"email":"abc"})"), "abc");
  EXPECT_EQ(base64URL(R"({"email":"ab"})").size() % 4, 3);
  EXPECT_EQ(emailOfPayload(R"({"email":"ab"})"), "ab");
  EXPECT_EQ(base64URL(R"({"email":"abcd"})").size(), 22);
  EXPECT_EQ(emailOfPayload(R"({"email":"abcd"})"), "abcd");
}

TEST_F(TokenEmail, isReadFromAPayloadThatIsPaddedAlready) {
  EXPECT_EQ(emailOf("a." + base64URL(R"({"email":"abcd"})") + "==.c"), "abcd");
}

TEST_F(TokenEmail, isReadInTheAlphabetOfURLsAndInTheStandardOne) {
  const std::string payload = base64URL("{\"email\":\"~~~???\xC3\xBF\"}");
  ASSERT_NE(payload.find('-'), std::string::npos) << payload;
  ASSERT_NE(payload.find('_'), std::string::npos) << payload;
  EXPECT_EQ(emailOf("a." + payload + ".c"), "~~~???ÿ");
  EXPECT_EQ(emailOf("a.eyJlbWFpbCI6In5+fj8/PyJ9.c"), "~~~???");
}

TEST_F(TokenEmail, isNoneWhereThePayloadIsNoBase64) {
  for (const char* token : {"a.b.c", "a.eyJl*WFpbCI6IngifQ.c", "a.eyJlbWFpbCI6IngifQ=x.c", "a.====.c", "a.\xC3\xA9.c"})
    EXPECT_EQ(emailOf(token), std::nullopt) << token;
}

TEST_F(TokenEmail, isReadFromTenMegabytesAndNotFromAPyramid) {
  const std::string padding(10'000'000, 'x');
  EXPECT_EQ(emailOfPayload(R"({"padding":")" + padding + R"(","email":"someone"})"), "someone");
  EXPECT_EQ(emailOfPayload(std::string(1'000'000, '[')), std::nullopt);
}

}  // namespace
}  // namespace tavelle::tests
