#include "platform/linux/Deadline.h"

#include <optional>
#include <utility>

namespace tavelle {
namespace {

using Clock = std::chrono::steady_clock;

}  // namespace

struct Deadline::State {
  MainActor& actor;
  std::function<void()> passed;
  std::optional<Clock::time_point> due;
  std::optional<Clock::time_point> waking;
};

Deadline::Deadline(MainActor& actor, std::function<void()> passed)
    : state_(std::make_shared<State>(State{actor, std::move(passed), {}, {}})) {}

void Deadline::set(std::chrono::milliseconds fromNow) {
  state_->due = Clock::now() + fromNow;
  arm(state_);
}

void Deadline::clear() {
  state_->due.reset();
}

void Deadline::arm(const std::shared_ptr<State>& state) {
  if (state->waking && *state->waking <= *state->due) return;
  state->waking = state->due;
  const auto delay = std::chrono::ceil<std::chrono::milliseconds>(*state->due - Clock::now());
  state->actor.postAfter(delay, [weak = std::weak_ptr{state}] {
    if (const auto alive = weak.lock()) wake(alive);
  });
}

void Deadline::wake(const std::shared_ptr<State>& state) {
  state->waking.reset();
  if (!state->due) return;
  if (Clock::now() < *state->due) return arm(state);
  state->due.reset();
  state->passed();
}

}  // namespace tavelle
