#include "platform/TransferReply.h"

#include <utility>

namespace tavelle {

void TransferReply::deliver(Outcome outcome) {
  const std::lock_guard lock{mutex_};
  if (outcome_.index() != 0) return;
  outcome_ = std::move(outcome);
  if (waiting_) postResumption();
}

bool TransferReply::abandon() {
  const std::lock_guard lock{mutex_};
  waiting_ = nullptr;
  if (outcome_.index() != 0) return false;
  outcome_ = URLError{URLError::Code::cancelled, "cancelled"};
  return true;
}

void TransferReply::resumeOnArrival(std::coroutine_handle<> waiting) {
  // The coroutine may go on elsewhere, and let go of this object, before the lock is given back.
  const auto self = shared_from_this();
  const std::lock_guard lock{mutex_};
  waiting_ = waiting;
  if (outcome_.index() != 0) postResumption();
}

void TransferReply::postResumption() {
  executor_.post([self = shared_from_this()] {
    std::unique_lock lock{self->mutex_};
    const auto waiting = std::exchange(self->waiting_, nullptr);
    lock.unlock();
    if (waiting) waiting.resume();
  });
}

URLResult TransferReply::take() {
  const std::lock_guard lock{mutex_};
  if (auto* error = std::get_if<URLError>(&outcome_)) throw *error;
  return std::move(std::get<URLResult>(outcome_));
}

}  // namespace tavelle
