#pragma once

#include "platform/URLSession.h"

#include <memory>
#include <string>

namespace tavelle {

// The URL session over libcurl. Every session of the process shares one transfer thread, which starts with the first
// request, ends with the last session, and sleeps without a limit while nothing is in flight.
//
// A task may be dropped at any time: its transfer is called off, and nothing is resumed. The end of the session calls
// off what is in flight: those tasks fail with `cancelled`, on their executors, which must therefore outlive the
// session.
class CurlURLSession : public URLSession {
 public:
  // `authorities`: a PEM file, or a folder of certificates named by their hashes, to trust in place of the system's.
  explicit CurlURLSession(const URLSessionConfiguration& configuration, std::string authorities = {});
  ~CurlURLSession() override;
  CurlURLSession(const CurlURLSession&) = delete;
  CurlURLSession& operator=(const CurlURLSession&) = delete;

  Task<URLResult> dataForRequest(URLRequest request, Executor& executor) override;

 private:
  class State;
  static Task<URLResult> load(std::shared_ptr<State> state, URLRequest request, Executor* executor);

  std::shared_ptr<State> state_;  // shared with the tasks, which may outlive the session
};

}  // namespace tavelle
