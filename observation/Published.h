#pragma once

#include "observation/Subject.h"

#include <utility>

namespace tavelle {

// A value whose changes can be followed. Subscribers hear of a new value just before it takes the old one's place, so
// that they can compare; reading the property inside a subscriber still gives the old value. One thread only.
template <typename T>
class Published {
 public:
  explicit Published(T value) : value_(std::move(value)) {}

  const T& get() const { return value_; }

  void set(T value) {
    changes_.send(value);
    value_ = std::move(value);
  }

  // Calls `receiver` with the current value at once, then with each new one.
  Subscription subscribe(std::function<void(const T&)> receiver) {
    receiver(value_);
    return changes_.subscribe(std::move(receiver));
  }

  // Calls `receiver` with each new value only.
  Subscription subscribeDroppingFirst(std::function<void(const T&)> receiver) {
    return changes_.subscribe(std::move(receiver));
  }

 private:
  T value_;
  Subject<T> changes_;
};

}  // namespace tavelle
