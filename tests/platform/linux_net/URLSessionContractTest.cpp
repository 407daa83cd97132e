#include "tests/platform/contracts/URLSessionContract.h"

#include "platform/linux/URLSession.h"
#include "tests/support/PercentEncoded.h"
#include "tests/support/StandIn.h"

#include <memory>
#include <string>
#include <vector>

namespace tavelle::tests {
namespace {

// The stand-in as the server.
class SessionOnTheNetwork {
 public:
  URLSession& session() { return session_; }

  URLRequest answered(int status, const Data& body) {
    return behaving("status=" + std::to_string(status) + ",body=" + percentEncoded(body));
  }
  URLRequest answeredWithoutHTTP(const Data& body) { return behaving("garbage=" + percentEncoded(body)); }
  URLRequest unanswered() { return behaving("silence"); }
  static URLRequest refused() { return post("http://127.0.0.1:1/"); }

  std::vector<SentRequest> sent() const { return asSent(server_.requests()); }
  bool waitForSent(std::size_t count) const { return server_.waitForRequests(count).size() == count; }

 private:
  URLRequest behaving(const std::string& behaviour) const {
    return post(server_.baseURLBehaving(behaviour) + "/chat/completions?key=a%20b");
  }

  static URLRequest post(const std::string& url) {
    return {.url = URL::parse(url).value(), .method = "POST", .headers = {}, .body = {}};
  }

  static std::vector<SentRequest> asSent(const std::vector<RecordedRequest>& requests) {
    std::vector<SentRequest> all;
    for (const auto& request : requests) all.push_back({request.method, request.path, request.headers, request.body});
    return all;
  }

  StandIn server_;
  LinuxURLSession session_{URLSessionConfiguration{}, std::make_shared<TransferProcess>()};
};

INSTANTIATE_TYPED_TEST_SUITE_P(OnTheNetwork, URLSessionContract, SessionOnTheNetwork);

}  // namespace
}  // namespace tavelle::tests
