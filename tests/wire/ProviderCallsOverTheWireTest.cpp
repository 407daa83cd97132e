#include "tests/wire/OverTheWire.h"

#include <chrono>
#include <ostream>
#include <string>
#include <vector>

namespace tavelle::tests {
namespace {

using testing::AllOf;
using testing::AnyOf;
using testing::HasSubstr;
using testing::StartsWith;

constexpr auto noFormat = "The data couldn’t be read because it isn’t in the correct format.";
constexpr auto noAnswer = "Failed to parse response";

// A provider with a format of its own, as the stand-in serves it.
struct Peer {
  LLMProvider provider;
  std::string model;
  std::string version;  // the path of its base URL
  std::string path;
  std::vector<std::string> brokenPromises;  // 200 answers without a text where the format has it
};

const Peer openAI{LLMProvider::openAI,
                  "gpt-4o",
                  "/v1",
                  "/v1/chat/completions",
                  {"array", "empty-object", "null-choices", "object-choices", "empty-choices", "string-choice",
                   "no-message", "string-message", "no-content", "null-content", "number-content", "array-content"}};
const Peer anthropic{LLMProvider::anthropic,
                     "claude-sonnet-4-20250514",
                     "/v1",
                     "/v1/messages",
                     {"array", "empty-object", "null-content", "string-content", "object-content", "empty-content",
                      "string-block", "late-text", "null-text", "number-text"}};
const Peer gemini{
    LLMProvider::gemini,
    "gemini-2.0-flash",
    "/v1beta",
    "/v1beta/models/gemini-2.0-flash:generateContent?key=made-up-key",
    {"array", "empty-object", "null-candidates", "empty-candidates", "string-candidate", "blocked", "blocked-prompt",
     "string-content", "no-parts", "empty-parts", "late-text", "null-text", "number-text"}};
const Peer hosted{LLMProvider::tavelle,
                  "",
                  "",
                  "/reword",
                  {"array", "empty-object", "other-member", "null-result", "number-result", "object-result"}};

// For the test's name in a report.
std::ostream& operator<<(std::ostream& out, const Peer& peer) {
  return out << peer.provider.rawValue();
}

std::string nameOf(const testing::TestParamInfo<Peer>& info) {
  return std::string{info.param.provider.rawValue()};
}

class ProviderCallOverTheWire : public OverTheWire, public testing::WithParamInterface<Peer> {
 protected:
  ProviderCallOverTheWire() { signInWith(arbitraryKey); }

  std::string rewordAt(const std::string& root) {
    platform.hostedServiceAt = root;
    return reword(GetParam().provider, GetParam().model, root + GetParam().version);
  }
  std::string rewordFromOneThat(const std::string& behaviour) {
    return rewordAt(standIn.root() + "/_behave/" + behaviour);
  }

  StandIn standIn{{"--key", arbitraryKey}};
};

INSTANTIATE_TEST_SUITE_P(Every, ProviderCallOverTheWire, testing::Values(openAI, anthropic, gemini, hosted), nameOf);

TEST_P(ProviderCallOverTheWire, returnsTheTextOfTheProvidersAnswer) {
  EXPECT_EQ(rewordAt(standIn.root()), "I cannot come.");
  ASSERT_EQ(standIn.requests().size(), 1);
  EXPECT_EQ(standIn.requests()[0].method, "POST");
  EXPECT_EQ(standIn.requests()[0].path, GetParam().path);
  EXPECT_EQ(standIn.requests()[0].header("content-type"), "application/json");
}

TEST_P(ProviderCallOverTheWire, tellsEveryStatusOtherThan200WithTheRawBody) {
  for (const std::string status : {"201", "400", "403", "429", "500", "529"}) {
    EXPECT_EQ(rewordFromOneThat("status=" + status + ",body=%7B%22error%22%3A%22slow%20down%22%7D"),
              "API error (" + status + R"(): {"error":"slow down"})");
  }
  EXPECT_EQ(rewordFromOneThat("status=204"), "API error (204): ");
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
  platform.patience = std::chrono::seconds{1};
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

// The formats whose server and key are the person's own.
using PublicProviderCallOverTheWire = ProviderCallOverTheWire;

INSTANTIATE_TEST_SUITE_P(Every, PublicProviderCallOverTheWire, testing::Values(openAI, anthropic, gemini), nameOf);

TEST_P(PublicProviderCallOverTheWire, tellsInTheProvidersWordsThatTheKeyIsAnother) {
  const StandIn other{{"--key", "another"}};
  EXPECT_THAT(rewordAt(other.root()), AnyOf(StartsWith(R"(API error (401): {"error":{"message":"Incorrect API key)"),
                                            StartsWith(R"(API error (401): {"type":"error","error":{"type":"auth)"),
                                            StartsWith(R"(API error (400): {"error":{"code":400,"message":"API key)")));
}

TEST_P(PublicProviderCallOverTheWire, tellsA401WithTheRawBodyAndAsksForNoSignIn) {
  EXPECT_EQ(rewordFromOneThat("status=401,body=no%20key"), "API error (401): no key");
}

TEST_P(PublicProviderCallOverTheWire, tellsInTheProvidersWordsThatThereIsNoSuchModel) {
  EXPECT_THAT(reword(GetParam().provider, "no-such-model", standIn.root() + GetParam().version),
              AllOf(StartsWith("API error (404): {"), HasSubstr("no-such-model")));
}

TEST_P(PublicProviderCallOverTheWire, misbehavesByTheModelToo) {
  EXPECT_EQ(reword(GetParam().provider, "misbehave:status=503,body=busy", standIn.root() + GetParam().version),
            "API error (503): busy");
}

TEST_F(OverTheWire, sendsTheDoubleSlashOfABaseURLThatEndsInOne) {
  const StandIn standIn;
  EXPECT_EQ(reword(LLMProvider::ollama, "llama3.2", standIn.baseURL() + "/"), "I cannot come.");
  EXPECT_EQ(standIn.requests().back().path, "/v1//chat/completions");
}

}  // namespace
}  // namespace tavelle::tests
