#include "llm/LLMService.h"
#include "tests/platform/linux/MainLoop.h"
#include "tests/support/StandIn.h"
#include "tests/wire/WiredPlatform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace tavelle::tests {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

constexpr auto arbitraryKey = "made-up-key";
constexpr auto noFormat = "The data couldn’t be read because it isn’t in the correct format.";
constexpr auto noAnswer = "Failed to parse response";

// A provider with a format of its own, as the stand-in serves it.
struct Peer {
  LLMProvider provider;
  std::string model;
  std::string version;  // the path of its base URL
  std::string path;
  std::string refusalOfAnotherKey;          // how the description of that error begins
  std::vector<std::string> brokenPromises;  // 200 answers without a text where the format has it
};

const std::vector<Peer> peers{
    {LLMProvider::openAI,
     "gpt-4o",
     "/v1",
     "/v1/chat/completions",
     R"(API error (401): {"error":{"message":"Incorrect API key provided)",
     {"array", "empty-object", "null-choices", "object-choices", "empty-choices", "string-choice", "no-message",
      "string-message", "no-content", "null-content", "number-content", "array-content"}},
    {LLMProvider::anthropic,
     "claude-sonnet-4-20250514",
     "/v1",
     "/v1/messages",
     R"(API error (401): {"type":"error","error":{"type":"authentication_error","message":"invalid x-api-key"})",
     {"array", "empty-object", "null-content", "string-content", "object-content", "empty-content", "string-block",
      "late-text", "null-text", "number-text"}},
    {LLMProvider::gemini,
     "gemini-2.0-flash",
     "/v1beta",
     "/v1beta/models/gemini-2.0-flash:generateContent?key=made-up-key",
     R"(API error (400): {"error":{"code":400,"message":"API key not valid.)",
     {"array", "empty-object", "null-candidates", "empty-candidates", "string-candidate", "blocked", "blocked-prompt",
      "string-content", "no-parts", "empty-parts", "late-text", "null-text", "number-text"}},
};

// For the test's name in a report.
std::ostream& operator<<(std::ostream& out, const Peer& peer) {
  return out << peer.provider.rawValue();
}

std::string nameOf(const testing::TestParamInfo<Peer>& info) {
  return std::string{info.param.provider.rawValue()};
}

class OverTheWire : public testing::Test {
 protected:
  OverTheWire() { platform.patience = std::chrono::seconds{1}; }

  // The answer, or the error's description.
  std::string reword(LLMProvider provider, const std::string& model, const std::string& baseURL,
                     const std::string& apiKey = arbitraryKey) {
    std::optional<std::string> outcome;
    platform.mainActor().start(send(provider, model, baseURL, apiKey, &outcome));
    EXPECT_TRUE(waitUntil([&outcome] { return outcome.has_value(); }));
    return outcome.value_or("");
  }

  static Task<void> send(LLMProvider provider, std::string model, std::string baseURL, std::string apiKey,
                         std::optional<std::string>* outcome) {
    try {
      *outcome =
          co_await LLMService::shared().reword("i cant come", provider, model, baseURL, apiKey, "Reword it.", 0.7);
    } catch (const LocalizedError& error) {
      *outcome = error.errorDescription();
    }
  }

  WiredPlatform platform;
  Platform::Use use{platform};
};

class ProviderCallOverTheWire : public OverTheWire, public testing::WithParamInterface<Peer> {
 protected:
  std::string rewordAt(const std::string& root) {
    return reword(GetParam().provider, GetParam().model, root + GetParam().version);
  }
  std::string rewordFromOneThat(const std::string& behaviour) {
    return rewordAt(standIn.root() + "/_behave/" + behaviour);
  }

  StandIn standIn{{"--key", arbitraryKey}};
};

INSTANTIATE_TEST_SUITE_P(Every, ProviderCallOverTheWire, testing::ValuesIn(peers), nameOf);

TEST_P(ProviderCallOverTheWire, returnsTheTextOfTheProvidersAnswer) {
  EXPECT_EQ(rewordAt(standIn.root()), "I cannot come.");
  ASSERT_EQ(standIn.requests().size(), 1);
  EXPECT_EQ(standIn.requests()[0].method, "POST");
  EXPECT_EQ(standIn.requests()[0].path, GetParam().path);
  EXPECT_EQ(standIn.requests()[0].header("content-type"), "application/json");
}

TEST_P(ProviderCallOverTheWire, tellsInTheProvidersWordsThatTheKeyIsAnother) {
  const StandIn other{{"--key", "another"}};
  EXPECT_THAT(rewordAt(other.root()), StartsWith(GetParam().refusalOfAnotherKey));
}

TEST_P(ProviderCallOverTheWire, tellsInTheProvidersWordsThatThereIsNoSuchModel) {
  EXPECT_THAT(reword(GetParam().provider, "no-such-model", standIn.root() + GetParam().version),
              AllOf(StartsWith("API error (404): {"), HasSubstr("no-such-model")));
}

TEST_P(ProviderCallOverTheWire, tellsEveryStatusOtherThan200WithTheRawBody) {
  for (const auto* status : {"201", "204", "400", "401", "429", "500", "529"}) {
    const auto body = std::string{status} == "204" ? "" : R"({"error":"slow down"})";
    EXPECT_EQ(rewordFromOneThat("status=" + std::string{status} +
                                ",body=" + (*body ? "%7B%22error%22%3A%22slow%20down%22%7D" : "")),
              "API error (" + std::string{status} + "): " + body);
  }
  EXPECT_EQ(rewordFromOneThat("status=500,invalid-utf8"), "API error (500): Unknown error");
}

TEST_P(ProviderCallOverTheWire, cannotParseA200AnswerThatBreaksTheFormatsPromise) {
  for (const auto& shape : GetParam().brokenPromises) EXPECT_EQ(rewordFromOneThat("shape=" + shape), noAnswer) << shape;
}

TEST_P(ProviderCallOverTheWire, passesOnThatA200AnswerIsNoJSON) {
  for (const auto* behaviour : {"shape=not-json", "shape=empty", "shape=half", "shape=string", "shape=invalid-utf8",
                                "invalid-utf8", "body=%3Chtml%3E"}) {
    EXPECT_EQ(rewordFromOneThat(behaviour), noFormat) << behaviour;
  }
}

TEST_P(ProviderCallOverTheWire, readsOddCharactersChunksCompressionAndSlowBytes) {
  EXPECT_THAT(rewordFromOneThat("odd-text"),
              AllOf(HasSubstr("👩‍👩‍👧‍👦"), HasSubstr(std::string("\0 a NUL", 7))));
  for (const auto* behaviour : {"text=%20abc%0A", "text=abc,chunked=3", "text=abc,gzip", "text=abc,gzip,chunked=3",
                                "text=abc,trickle=0.001", "text=abc,close-after", "text=abc,delay=0.2"}) {
    EXPECT_EQ(rewordFromOneThat(behaviour), "abc") << behaviour;
  }
}

TEST_P(ProviderCallOverTheWire, followsARedirectionThatKeepsThePost) {
  EXPECT_EQ(rewordFromOneThat("redirect=307,times=3,text=abc"), "abc");
  ASSERT_EQ(standIn.requests().size(), 4);
  EXPECT_EQ(standIn.requests().back().body, standIn.requests().front().body);
}

TEST_P(ProviderCallOverTheWire, passesOnWhatTheTransportSays) {
  for (const auto* behaviour : {"truncate", "chunked-cut=5", "close"}) {
    EXPECT_EQ(rewordFromOneThat(behaviour), "The network connection was lost.") << behaviour;
  }
  for (const auto* behaviour : {"silence", "silence-after-head"}) {
    EXPECT_EQ(rewordFromOneThat(behaviour), "The request timed out.") << behaviour;
  }
  EXPECT_EQ(rewordFromOneThat("gzip-damaged"), "cannot decode raw data");
  EXPECT_EQ(rewordFromOneThat("garbage=What%3F"), "Invalid response from server");
  EXPECT_EQ(rewordAt("http://127.0.0.1:1"), "Could not connect to the server.");
}

TEST_P(ProviderCallOverTheWire, misbehavesByTheModelToo) {
  EXPECT_EQ(reword(GetParam().provider, "misbehave:status=503,body=busy", standIn.root() + GetParam().version),
            "API error (503): busy");
}

// Keys as people have them, and as they mistype them.

using KeysOverTheWire = OverTheWire;

TEST_F(KeysOverTheWire, travelInAHeaderByteForByte) {
  for (const std::string key : {"a&b=c#d", "two words, \"quoted\"", "clé-ключ-鍵-🔑", "%41?/+\\"}) {
    const StandIn standIn{{"--key", key}};
    EXPECT_EQ(reword(LLMProvider::openAI, "gpt-4o", standIn.baseURL(), key), "I cannot come.");
    EXPECT_EQ(reword(LLMProvider::anthropic, "claude", standIn.baseURL(), key), "I cannot come.");
    EXPECT_EQ(standIn.requests().at(0).header("authorization"), "Bearer " + key);
    EXPECT_EQ(standIn.requests().at(1).header("x-api-key"), key);
  }
}

TEST_F(KeysOverTheWire, corruptGeminisQueryWhereTheyHoldItsMarks) {
  const StandIn standIn{{"--key", "a&b"}};
  EXPECT_THAT(reword(LLMProvider::gemini, "gemini", standIn.root() + "/v1beta", "a&b"), HasSubstr("API key not valid"));
  EXPECT_THAT(standIn.requests().back().path, EndsWith(":generateContent?key=a&b"));
  EXPECT_THAT(reword(LLMProvider::gemini, "gemini", standIn.root() + "/v1beta", "a#b"), HasSubstr("API key not valid"));
  EXPECT_THAT(standIn.requests().back().path, EndsWith(":generateContent?key=a")) << "the rest is a fragment";
}

TEST_F(KeysOverTheWire, areAbsentForAnEmptyKeyOnlyInTheOpenAIFormat) {
  const StandIn standIn;
  for (const auto provider : {LLMProvider::openAI, LLMProvider::ollama, LLMProvider::custom}) {
    EXPECT_EQ(reword(provider, "any", standIn.baseURL(), ""), "I cannot come.");
    EXPECT_FALSE(standIn.requests().back().hasHeader("authorization"));
  }
  EXPECT_THAT(reword(LLMProvider::anthropic, "any", standIn.baseURL(), ""),
              AllOf(StartsWith("API error (401): {"), HasSubstr("x-api-key header is required")));
  EXPECT_TRUE(standIn.requests().back().hasHeader("x-api-key"));
  EXPECT_EQ(standIn.requests().back().header("x-api-key"), "");
  EXPECT_THAT(reword(LLMProvider::gemini, "any", standIn.root() + "/v1beta", ""), StartsWith("API error (403): {"));
  EXPECT_THAT(standIn.requests().back().path, EndsWith("?key="));
}

TEST_F(KeysOverTheWire, areSentWhenTheyAreBlank) {
  const StandIn standIn;
  reword(LLMProvider::custom, "any", standIn.baseURL(), " ");
  EXPECT_EQ(standIn.requests().back().header("authorization"), "Bearer  ");
}

TEST_F(OverTheWire, sendsTheDoubleSlashOfABaseURLThatEndsInOne) {
  const StandIn standIn;
  EXPECT_EQ(reword(LLMProvider::ollama, "llama3.2", standIn.baseURL() + "/"), "I cannot come.");
  EXPECT_EQ(standIn.requests().back().path, "/v1//chat/completions");
}

}  // namespace
}  // namespace tavelle::tests
