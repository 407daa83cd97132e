#include "platform/Platform.h"

#include "platform/FatalError.h"
#include "platform/Shared.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace tavelle {
namespace {

Platform* inUse = nullptr;

std::vector<void (*)()>& endings() {
  static std::vector<void (*)()> list;
  return list;
}

}  // namespace

Platform& Platform::current() {
  if (!inUse) fatalError("no platform is in use");
  return *inUse;
}

Platform::Use::Use(Platform& platform) {
  if (inUse) fatalError("a platform is in use already");
  inUse = &platform;
}

Platform::Use::~Use() {
  const auto list = std::exchange(endings(), {});
  std::for_each(list.rbegin(), list.rend(), [](auto* forget) { forget(); });
  inUse = nullptr;
}

void detail::atPlatformEnd(void (*forget)()) {
  endings().push_back(forget);
}

}  // namespace tavelle
