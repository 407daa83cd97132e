#pragma once

#include "platform/URLSession.h"
#include "tests/support/Load.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace tavelle::tests {

// A request as its server has got it.
struct SentRequest {
  std::string method;
  std::string target;  // path and query
  URLHeaders headers;
  Data body;

  // How this header reads; "nothing" where there is none.
  std::string header(std::string_view name) const {
    const auto found =
        std::find_if(headers.begin(), headers.end(), [name](const auto& one) { return one.first == name; });
    return found == headers.end() ? "nothing" : found->second;
  }
};

// What every backend's URL session does. A `Backend` is made afresh for each test and has session(); sent(), the
// requests that have come to a server, which waitForSent(count) waits for; and requests, POST with an empty body, for
// which it has laid down what comes of them: answered(status, body), answeredWithoutHTTP(body), refused(), where
// nothing listens, and unanswered(), which stays so.
//
//     INSTANTIATE_TYPED_TEST_SUITE_P(InMemory, URLSessionContract, InMemoryBackend);
template <typename Backend>
class URLSessionContract : public testing::Test {
 protected:
  Load start(URLRequest request) { return Load{backend.session(), std::move(request), executor}; }
  URLResult load(URLRequest request) { return start(std::move(request)).result(); }

  Backend backend;
  QueueExecutor executor;
};

TYPED_TEST_SUITE_P(URLSessionContract);

TYPED_TEST_P(URLSessionContract, sendsTheRequestAsItIs) {
  auto request = this->backend.answered(200, "{}");
  const auto& text = request.url.absoluteString();
  const auto target = text.substr(text.find('/', text.find("//") + 2));
  request.headers = {{"Content-Type", "application/json"}, {"Authorization", "Bearer key"}, {"x-api-key", ""}};
  request.body = Data("{\"text\":\"ü\0\"}", 14);
  this->load(request);
  ASSERT_EQ(this->backend.sent().size(), 1U);
  const auto sent = this->backend.sent().front();
  EXPECT_EQ(sent.method, "POST");
  EXPECT_EQ(sent.target, target);
  EXPECT_EQ(sent.header("Content-Type"), "application/json");
  EXPECT_EQ(sent.header("Authorization"), "Bearer key");
  EXPECT_EQ(sent.header("x-api-key"), "");
  EXPECT_EQ(sent.body, request.body);
}

TYPED_TEST_P(URLSessionContract, sendsNothingBeforeItsTaskIsAwaited) {
  { const auto task = this->backend.session().dataForRequest(this->backend.unanswered(), this->executor); }
  this->load(this->backend.answered(200, "{}"));
  EXPECT_EQ(this->backend.sent().size(), 1U);
}

TYPED_TEST_P(URLSessionContract, givesTheStatusAndTheBodyByteForByte) {
  for (const int status : {200, 201, 401, 404, 429, 500}) {
    for (const auto& body : {Data{R"({"error":1})"}, Data{}, Data("a\0b", 3), Data{"é 😀\r\n"}}) {
      const auto result = this->load(this->backend.answered(status, body));
      EXPECT_EQ(result.response.statusCode, status);
      EXPECT_EQ(result.data, body) << status;
    }
  }
}

TYPED_TEST_P(URLSessionContract, givesNoStatusToAResponseThatIsNotOfHTTP) {
  const auto result = this->load(this->backend.answeredWithoutHTTP("What?"));
  EXPECT_EQ(result.response.statusCode, std::nullopt);
  EXPECT_EQ(result.data, "What?");
}

TYPED_TEST_P(URLSessionContract, givesEachRequestItsOwnAnswer) {
  std::vector<Load> loads;
  for (int number = 0; number < 5; ++number) {
    loads.push_back(this->start(this->backend.answered(200, std::to_string(number))));
  }
  for (std::size_t number = 0; number < 5; ++number) EXPECT_EQ(loads[number].result().data, std::to_string(number));
}

TYPED_TEST_P(URLSessionContract, failsInThePlatformsWords) {
  auto failing = this->start(this->backend.refused());
  const auto error = failing.error();
  EXPECT_EQ(error.code(), URLError::Code::cannotConnectToHost);
  EXPECT_EQ(error.errorDescription(), "Could not connect to the server.");
}

TYPED_TEST_P(URLSessionContract, resumesOnTheExecutorAlone) {
  for (const auto& request : {this->backend.answered(200, "{}"), this->backend.refused()}) {
    auto loading = this->start(request);
    ASSERT_TRUE(this->executor.waitForJob());
    EXPECT_FALSE(loading.isDone());
    ASSERT_TRUE(this->executor.runUntil([&] { return loading.isDone(); }));
    EXPECT_EQ(loading.resumedOn(), std::this_thread::get_id());
  }
}

TYPED_TEST_P(URLSessionContract, callsATransferOffWhenItsTaskIsDropped) {
  {
    const auto dropped = this->start(this->backend.unanswered());
    ASSERT_TRUE(this->backend.waitForSent(1));
  }
  EXPECT_EQ(this->load(this->backend.answered(200, "mine")).data, "mine");
  EXPECT_EQ(this->executor.waiting(), 0U);
}

TYPED_TEST_P(URLSessionContract, resumesNothingThatIsDroppedAfterItsReplyHasCome) {
  {
    const auto dropped = this->start(this->backend.answered(200, "theirs"));
    ASSERT_TRUE(this->executor.waitForJob());
  }
  EXPECT_EQ(this->executor.waiting(), 1U);
  EXPECT_EQ(this->load(this->backend.answered(200, "mine")).data, "mine");
}

REGISTER_TYPED_TEST_SUITE_P(URLSessionContract, sendsTheRequestAsItIs, sendsNothingBeforeItsTaskIsAwaited,
                            givesTheStatusAndTheBodyByteForByte, givesNoStatusToAResponseThatIsNotOfHTTP,
                            givesEachRequestItsOwnAnswer, failsInThePlatformsWords, resumesOnTheExecutorAlone,
                            callsATransferOffWhenItsTaskIsDropped, resumesNothingThatIsDroppedAfterItsReplyHasCome);

}  // namespace tavelle::tests
