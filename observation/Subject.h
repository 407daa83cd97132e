#pragma once

#include "observation/Subscription.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <utility>

namespace tavelle {

// Passes each value sent to every subscriber, in the order in which they subscribed. One thread only. A subscriber may
// subscribe or cancel while a value is being sent: one that cancelled is not called any more, a new one sees the next
// value.
template <typename... Values>
class Subject {
 public:
  using Receiver = std::function<void(const Values&...)>;

  Subscription subscribe(Receiver receiver) {
    const auto id = receivers_->next++;
    receivers_->byID.emplace(id, std::make_shared<Receiver>(std::move(receiver)));
    return Subscription{[weak = std::weak_ptr{receivers_}, id] {
      if (const auto receivers = weak.lock()) receivers->byID.erase(id);
    }};
  }

  void send(const Values&... values) const {
    const auto receivers = receivers_;  // kept should a receiver destroy this subject
    const auto end = receivers->next;
    for (auto at = receivers->byID.begin(); at != receivers->byID.end() && at->first < end;) {
      const auto id = at->first;
      const auto receiver = at->second;  // kept should it cancel itself
      (*receiver)(values...);
      at = receivers->byID.upper_bound(id);
    }
  }

 private:
  struct Receivers {
    std::uint64_t next = 0;
    std::map<std::uint64_t, std::shared_ptr<Receiver>> byID;
  };
  std::shared_ptr<Receivers> receivers_ = std::make_shared<Receivers>();
};

}  // namespace tavelle
