#pragma once

#include "concurrency/Executor.h"
#include "concurrency/MainActor.h"
#include "concurrency/Task.h"

namespace tavelle {

// An actor's own executor: its jobs never overlap, and never run on the main thread. The platform makes it.
class SerialExecutor : public Executor {
 public:
  // Runs `work` on this executor and resumes the caller on `home`, with the result or the exception.
  template <typename T>
  Task<T> run(Task<T> work, MainActor& home) {
    co_await hop();
    std::exception_ptr error;
    std::optional<T> result;
    try {
      result.emplace(co_await work);
    } catch (...) {
      error = std::current_exception();
    }
    co_await home.hop();
    if (error) std::rethrow_exception(error);
    co_return std::move(*result);
  }
};

}  // namespace tavelle
