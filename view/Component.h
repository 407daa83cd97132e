#pragma once

#include "observation/Subject.h"
#include "observation/Subscription.h"
#include "view/Node.h"

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace tavelle::view {

// A part of the tree that has state of its own. It lives exactly as long as it keeps its place: it is made when its
// node first appears, is kept through every change around it, and is gone with its node; one that comes back is fresh.
// Held by shared_ptr, so that work in progress can hold it weakly.
class Component : public std::enable_shared_from_this<Component> {
 public:
  Component() = default;
  Component(const Component&) = delete;
  Component& operator=(const Component&) = delete;
  virtual ~Component() = default;

  // Once, before it is first drawn.
  virtual void onAppear() {}

  // What it looks like now. Asked for again on a later turn of the loop than the change that called for it.
  virtual Node body() = 0;

  // Has it drawn anew.
  void invalidate() {
    if (onInvalidated_) onInvalidated_();
  }

 protected:
  // Draws anew at each of the subject's changes.
  void observe(Subject<>& changes) {
    observed_.push_back(changes.subscribe([this] { invalidate(); }));
  }

 private:
  friend class Reconciler;
  std::function<void()> onInvalidated_;
  std::vector<Subscription> observed_;
};

// A node that stands for a component of type `T`. The arguments count when it is made, and not again while it lives.
template <typename T, typename... Arguments>
Node component(Arguments... arguments) {
  static constexpr char type{};
  return Node{ComponentRecipe{&type, [arguments...] { return std::make_shared<T>(arguments...); }}};
}

}  // namespace tavelle::view
