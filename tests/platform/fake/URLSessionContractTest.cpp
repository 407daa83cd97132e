#include "platform/fake/URLSession.h"
#include "tests/platform/contracts/URLSessionContract.h"

#include <vector>

namespace tavelle::tests {
namespace {

struct ExchangeInMemory {
  URLSession& session() { return fake; }

  URLRequest answered(int status, const Data& body) {
    exchange.answer(status, body);
    return request();
  }
  URLRequest answeredWithoutHTTP(const Data& body) {
    exchange.answerWithoutHTTP(body);
    return request();
  }
  URLRequest refused() {
    exchange.fail({URLError::Code::cannotConnectToHost, "Could not connect to the server."});
    return request();
  }
  static URLRequest unanswered() { return request(); }

  std::vector<SentRequest> sent() const {
    std::vector<SentRequest> all;
    for (const auto& [url, method, headers, body, timeout] : exchange.requests) {
      all.push_back({method, url.absoluteString().substr(hostAndScheme.size()), headers, body});
    }
    return all;
  }
  bool waitForSent(std::size_t count) const { return exchange.requests.size() == count; }

 private:
  static constexpr std::string_view hostAndScheme = "http://host";

  static URLRequest request() {
    const auto url = URL::parse(std::string{hostAndScheme} + "/v1/chat/completions?key=a%20b");
    return {.url = url.value(), .method = "POST", .headers = {}, .body = {}};
  }

  FakeURLSession::Exchange exchange;
  FakeURLSession fake{exchange};
};

INSTANTIATE_TYPED_TEST_SUITE_P(InMemory, URLSessionContract, ExchangeInMemory);

}  // namespace
}  // namespace tavelle::tests
