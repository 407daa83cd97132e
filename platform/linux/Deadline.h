#pragma once

#include "concurrency/MainActor.h"

#include <chrono>
#include <functional>
#include <memory>

namespace tavelle {

// A moment that can be moved or dropped before it comes. However often it is moved, hardly ever more than one job waits
// at the main actor for it, so that a limit which is put off with every piece of progress costs no wake-ups.
class Deadline {
 public:
  using Clock = std::function<std::chrono::steady_clock::time_point()>;

  Deadline(MainActor& actor, std::function<void()> passed, Clock clock = std::chrono::steady_clock::now);

  // Replaces the moment set before.
  void set(std::chrono::milliseconds fromNow);
  void clear();
  bool isSet() const;

 private:
  struct State;
  static void arm(const std::shared_ptr<State>& state);
  static void wake(const std::shared_ptr<State>& state);

  std::shared_ptr<State> state_;
};

}  // namespace tavelle
