#pragma once

#include "platform/fake/MainActor.h"

#include <chrono>
#include <functional>

namespace tavelle::tests {

// Cranks the loop, a millisecond at a time, until `isTrue`. False where that takes a minute of its clock.
inline bool crankUntil(FakeMainActor& loop, const std::function<bool()>& isTrue) {
  const auto limit = loop.now() + std::chrono::minutes{1};
  loop.runUntilIdle();
  while (!isTrue() && loop.now() < limit) loop.advance(std::chrono::milliseconds{1});
  return isTrue();
}

}  // namespace tavelle::tests
