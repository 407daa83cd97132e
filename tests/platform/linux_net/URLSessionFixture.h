#pragma once

#include "platform/linux/URLSession.h"
#include "tests/support/Environment.h"
#include "tests/support/Load.h"
#include "tests/support/StandIn.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <utility>

namespace tavelle::tests {

// A session, an executor that the test cranks, and chat completions to send.
class URLSessionFixture : public testing::Test {
 protected:
  static constexpr std::chrono::seconds long_{60};

  static URLRequest chat(const std::string& baseURL, const std::string& text = "hi") {
    return post(baseURL + "/chat/completions",
                R"({"model":"arbitrary","messages":[{"role":"user","content":")" + text + R"("}]})");
  }

  static URLRequest post(const std::string& url, std::string body) {
    URLRequest request{*URL::parse(url), "POST", {{"Content-Type", "application/json"}}, std::move(body), long_};
    return request;
  }

  Load start(URLRequest request) { return Load{session_, std::move(request), executor_}; }
  URLResult load(URLRequest request) { return start(std::move(request)).result(); }
  URLError failure(URLRequest request) { return start(std::move(request)).error(); }

  Environment resolver_{quickResolver};  // before the program that talks to servers is started
  QueueExecutor executor_;
  std::shared_ptr<TransferProcess> process_ = std::make_shared<TransferProcess>();
  LinuxURLSession session_{URLSessionConfiguration{long_}, process_};
};

}  // namespace tavelle::tests
