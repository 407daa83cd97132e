#pragma once

#include "concurrency/Executor.h"
#include "concurrency/Task.h"
#include "platform/Data.h"
#include "platform/LocalizedError.h"
#include "platform/URL.h"

#include <chrono>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tavelle {

// NSURLSessionConfiguration.
struct URLSessionConfiguration {
  // The longest silence: seconds without a byte sent or received. Where a request's own limit differs, the shorter
  // governs.
  std::chrono::seconds timeoutIntervalForRequest{60};
};

using URLHeaders = std::vector<std::pair<std::string, std::string>>;

// NSMutableURLRequest. Header names and values are sent as they are; a value may be empty.
struct URLRequest {
  URL url;
  std::string method = "GET";
  URLHeaders headers;
  Data body;
  std::chrono::seconds timeoutInterval{60};
};

// NSURLResponse; one that is not of HTTP has no status.
struct URLResponse {
  std::optional<int> statusCode;
};

// A transfer that failed before a response was whole: NSURLErrorDomain. The codes are the platform's.
class URLError : public LocalizedError {
 public:
  enum class Code : int {
    unknown = -1,
    cancelled = -999,
    badURL = -1000,
    timedOut = -1001,
    unsupportedURL = -1002,
    cannotFindHost = -1003,
    cannotConnectToHost = -1004,
    networkConnectionLost = -1005,
    httpTooManyRedirects = -1007,
    notConnectedToInternet = -1009,
    badServerResponse = -1011,
    cannotDecodeContentData = -1016,
    secureConnectionFailed = -1200,
    serverCertificateUntrusted = -1202,
  };

  // `description` is what a person reads, in the platform's wording where it has one.
  URLError(Code code, std::string description) : code_(code), description_(std::move(description)) {}

  Code code() const { return code_; }
  std::string errorDescription() const override { return description_; }

 private:
  Code code_;
  std::string description_;
};

struct URLResult {
  Data data;
  URLResponse response;
};

// Loads URLs (NSURLSession; libcurl on Linux): the system's trust store and proxies, redirects followed, compressed
// bodies decoded. Cookies are the platform's affair; Linux keeps none. No thread of the caller waits.
class URLSession {
 public:
  virtual ~URLSession() = default;

  // Sends the request and gathers the whole answer; throws URLError. Resumes on `executor`. Callable from any thread.
  virtual Task<URLResult> dataForRequest(URLRequest request, Executor& executor) = 0;
};

}  // namespace tavelle
