#pragma once

#include "tests/platform/linux/TemporaryFolder.h"
#include "tests/support/ChildProcess.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tavelle::tests {

// A request as the stand-in received it.
struct RecordedRequest {
  int connection = 0;  // a number of its own for each TCP connection
  std::string method;
  std::string path;  // with the query
  std::vector<std::pair<std::string, std::string>> headers;
  std::string body;

  // Whether there was such a header, and how it read; names are compared without regard to case.
  bool hasHeader(std::string_view name) const;
  std::string header(std::string_view name) const;
};

// A stand-in for a model's server (tools/stand-in), running for the life of this object. The keys it is sent are
// recorded.
class StandIn {
 public:
  // Returns once it listens. `arguments` are more of its command line, such as {"--tls", certificate, key}.
  explicit StandIn(const std::vector<std::string>& arguments = {});

  std::uint16_t port() const { return port_; }

  // Where it is: http://127.0.0.1:PORT.
  std::string root(std::string_view scheme = "http") const;

  // What a person would enter as the base URL: http://127.0.0.1:PORT/v1.
  std::string baseURL(std::string_view scheme = "http") const;

  // The base URL under which the stand-in misbehaves; tools/stand-in/README.md has the names:
  // "status=429,body=slow%20down".
  std::string baseURLBehaving(std::string_view behaviour, std::string_view scheme = "http") const;

  // Every request so far, in the order of arrival; a request is there before it is answered.
  std::vector<RecordedRequest> requests() const;

  // Waits until there are `count`, at most ten seconds without a new one; returns what there is then.
  std::vector<RecordedRequest> waitForRequests(std::size_t count) const;

 private:
  TemporaryFolder folder_;
  ChildProcess server_;
  std::uint16_t port_ = 0;
};

}  // namespace tavelle::tests
