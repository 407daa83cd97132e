#pragma once

#include "concurrency/Executor.h"
#include "concurrency/Task.h"

#include <chrono>
#include <functional>

namespace tavelle {

// The main thread as the program sees it: the platform's main loop. All of Tavelle's own state is read and written
// here.
class MainActor : public Executor {
 public:
  // Runs `job` on the main thread once `delay` has passed on the continuous clock (monotonic, counting while the
  // machine sleeps, where the platform has timers of it). Never early. Main thread only.
  virtual void postAfter(std::chrono::milliseconds delay, std::function<void()> job) = 0;

  // Suspends the caller for `duration`, with no tolerance; it resumes on the main thread.
  Task<void> sleep(std::chrono::milliseconds duration);

  // Starts `work` on a later turn of the main loop and returns at once. The main actor owns it until it ends. An
  // exception that leaves `work` is a programming error and ends the process. Main thread only.
  void start(Task<void> work);

  // Whether anything that was started has not ended yet. Main thread only.
  bool isWorking() const { return running_ > 0; }

 private:
  int running_ = 0;
};

}  // namespace tavelle
