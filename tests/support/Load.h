#pragma once

#include "platform/URLSession.h"
#include "tests/support/QueueExecutor.h"

#include <memory>
#include <optional>
#include <thread>

namespace tavelle::tests {

// A request under way: started when it is made, called off when it goes.
class Load {
 public:
  Load(URLSession& session, URLRequest request, QueueExecutor& executor);
  ~Load();
  Load(Load&& other) noexcept;
  Load& operator=(Load&&) = delete;

  bool isDone() const { return outcome_->isDone; }

  // Cranks the executor until the load has ended; the result, or the error. The other one is a failure of the test.
  URLResult result();
  URLError error();

  // On which thread the caller went on.
  std::thread::id resumedOn() const { return outcome_->resumedOn; }

 private:
  struct Outcome {
    bool isDone = false;
    std::optional<URLResult> result;
    std::optional<URLError> error;
    std::thread::id resumedOn;
  };
  class Frame;

  static Frame follow(Task<URLResult> task, std::shared_ptr<Outcome> outcome);

  QueueExecutor* executor_;
  std::shared_ptr<Outcome> outcome_;
  std::unique_ptr<Frame> frame_;
};

}  // namespace tavelle::tests
