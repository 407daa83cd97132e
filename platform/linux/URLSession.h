#pragma once

#include "platform/URLSession.h"
#include "platform/linux/TransferProcess.h"

#include <memory>
#include <string>

namespace tavelle {

// A URL session whose requests are sent by the transfer process.
//
// A task may be dropped at any time: its transfer is called off, and nothing is resumed. The end of the session calls
// off what is in flight: those tasks fail with `cancelled`, on their executors, which must therefore outlive the
// session.
class LinuxURLSession : public URLSession {
 public:
  // `authorities`: a PEM file, or a folder of certificates named by their hashes, to trust in place of the system's.
  LinuxURLSession(const URLSessionConfiguration& configuration, std::shared_ptr<TransferProcess> process,
                  std::string authorities = {});
  ~LinuxURLSession() override;
  LinuxURLSession(const LinuxURLSession&) = delete;
  LinuxURLSession& operator=(const LinuxURLSession&) = delete;

  Task<URLResult> dataForRequest(URLRequest request, Executor& executor) override;

 private:
  class State;
  static Task<URLResult> load(std::shared_ptr<State> state, URLRequest request, Executor* executor);

  std::shared_ptr<State> state_;  // shared with the tasks, which may outlive the session
};

}  // namespace tavelle
