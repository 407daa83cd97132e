#include "platform/linux/x11/CopyWatch.h"

#include <algorithm>
#include <utility>

namespace tavelle::x11 {

CopyWatch::CopyWatch(Connection& connection, MainActor& actor, SelectionOwner& owner)
    : owner_(owner),
      ping_(connection, [this] { noteAnswer(); }),
      asking_(actor, [this] { ask(); }),
      patience_(actor, [this] { end(); }),
      lost_(owner.lost().subscribe([this] { end(); })) {}

void CopyWatch::begin(xcb_window_t focus) {
  end();
  if (!owner_.owns() || !owner_.contents()->isEmpty()) return;  // a result could not be told from what is there
  isPending_ = true;
  sent_ = Clock::now();
  focus_ = focus;
  answers_ = 0;
  asking_.set(std::chrono::milliseconds{0});
}

void CopyWatch::ask() {
  patience_.set(ping_.send(focus_) ? waitForAnswer : waitWithoutPing);
}

void CopyWatch::noteAnswer() {
  if (++answers_ == 1 && ping_.send(focus_)) return;
  const auto passed = std::chrono::floor<std::chrono::milliseconds>(Clock::now() - sent_);
  patience_.set(std::max(leastWait - passed, std::chrono::milliseconds{0}));
}

Task<void> CopyWatch::settled() {
  if (!isPending_) co_return;
  const Arrival<std::monostate> arrival;
  waiting_.push_back(arrival);
  Arrival<std::monostate>::Awaiter awaiter{arrival};
  co_await awaiter;
}

void CopyWatch::end() {
  isPending_ = false;
  asking_.clear();
  ping_.cancel();
  patience_.clear();
  for (auto& arrival : std::exchange(waiting_, {})) arrival.come({});
}

}  // namespace tavelle::x11
