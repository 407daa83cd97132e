#pragma once

#include <memory>

namespace tavelle {

namespace detail {
// Calls `forget` when the platform in use is put away, the latest first.
void atPlatformEnd(void (*forget)());
}  // namespace detail

// The process's one instance of `T`, made by `T::makeShared()` on the platform in use when it is first asked for, and
// kept until that platform is put away. Main thread only.
template <typename T>
T& sharedInstance() {
  static std::unique_ptr<T> instance;
  if (!instance) {
    instance = T::makeShared();
    detail::atPlatformEnd([] { instance.reset(); });
  }
  return *instance;
}

}  // namespace tavelle
