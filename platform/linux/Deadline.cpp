#include "platform/linux/Deadline.h"

#include <optional>
#include <utility>

namespace tavelle {
struct Deadline::State {
  MainActor& actor;
  std::function<void()> passed;
  Clock now;
  std::optional<std::chrono::steady_clock::time_point> due;
  std::optional<std::chrono::steady_clock::time_point> waking;
};

Deadline::Deadline(MainActor& actor, std::function<void()> passed, Clock clock)
    : state_(std::make_shared<State>(State{actor, std::move(passed), std::move(clock), {}, {}})) {}

void Deadline::set(std::chrono::milliseconds fromNow) {
  state_->due = state_->now() + fromNow;
  arm(state_);
}

void Deadline::clear() {
  state_->due.reset();
}

bool Deadline::isSet() const {
  return state_->due.has_value();
}

void Deadline::arm(const std::shared_ptr<State>& state) {
  if (state->waking && *state->waking <= *state->due) return;
  state->waking = state->due;
  const auto delay = std::chrono::ceil<std::chrono::milliseconds>(*state->due - state->now());
  state->actor.postAfter(delay, [weak = std::weak_ptr{state}] {
    if (const auto alive = weak.lock()) wake(alive);
  });
}

void Deadline::wake(const std::shared_ptr<State>& state) {
  state->waking.reset();
  if (!state->due) return;
  if (state->now() < *state->due) return arm(state);
  state->due.reset();
  state->passed();
}

}  // namespace tavelle
