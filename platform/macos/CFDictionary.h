#pragma once

#include "platform/macos/CFRef.h"

#include <utility>
#include <vector>

namespace tavelle {

// A dictionary of these, which it retains.
inline CFRef<CFDictionaryRef> cfDictionary(const std::vector<std::pair<CFStringRef, CFTypeRef>>& entries) {
  std::vector<const void*> keys;
  std::vector<const void*> values;
  for (const auto& [key, value] : entries) {
    keys.push_back(key);
    values.push_back(value);
  }
  return CFRef<CFDictionaryRef>{CFDictionaryCreate(kCFAllocatorDefault, keys.data(), values.data(),
                                                   static_cast<CFIndex>(keys.size()), &kCFTypeDictionaryKeyCallBacks,
                                                   &kCFTypeDictionaryValueCallBacks)};
}

}  // namespace tavelle
