#pragma once

#include <functional>
#include <utility>

namespace tavelle {

// Keeps a subscription alive: dropping the token ends it. Move-only. A token may outlive what it subscribed to.
class [[nodiscard]] Subscription {
 public:
  Subscription() = default;
  explicit Subscription(std::function<void()> cancel) : cancel_(std::move(cancel)) {}
  Subscription(Subscription&& other) noexcept : cancel_(std::exchange(other.cancel_, nullptr)) {}
  Subscription& operator=(Subscription&& other) noexcept {
    std::swap(cancel_, other.cancel_);
    return *this;
  }
  Subscription(const Subscription&) = delete;
  Subscription& operator=(const Subscription&) = delete;
  ~Subscription() { cancel(); }

  void cancel() {
    if (auto cancelNow = std::exchange(cancel_, nullptr)) cancelNow();
  }

 private:
  std::function<void()> cancel_;
};

}  // namespace tavelle
