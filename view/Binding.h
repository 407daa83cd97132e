#pragma once

#include <functional>

namespace tavelle::view {

// A way to a value that is kept elsewhere: what a control shows and changes.
template <typename T>
struct Binding {
  std::function<T()> get;
  std::function<void(T)> set;
};

}  // namespace tavelle::view
