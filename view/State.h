#pragma once

#include "view/Binding.h"
#include "view/Component.h"

#include <utility>

namespace tavelle::view {

// A value of a component's own, a member of it: changing it has the component drawn anew.
template <typename T>
class State {
 public:
  State(Component& owner, T initial) : owner_(owner), value_(std::move(initial)) {}
  State(const State&) = delete;
  State& operator=(const State&) = delete;

  const T& get() const { return value_; }

  void set(const T& value) {
    if (value == value_) return;
    value_ = value;
    owner_.invalidate();
  }

  // Good for as long as the component lives.
  Binding<T> binding() {
    return {[this] { return value_; }, [this](const T& value) { set(value); }};
  }

 private:
  Component& owner_;
  T value_;
};

}  // namespace tavelle::view
