#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <memory>
#include <string_view>
#include <type_traits>

namespace tavelle {

struct CFReleaser {
  void operator()(CFTypeRef object) const { CFRelease(object); }
};

// The owner of a Core Foundation object that was created or copied: CFRef<CFStringRef>.
template <typename Reference>
using CFRef = std::unique_ptr<std::remove_pointer_t<Reference>, CFReleaser>;

// Null where `text` is not UTF-8.
inline CFRef<CFStringRef> cfString(std::string_view text) {
  return CFRef<CFStringRef>{CFStringCreateWithBytes(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(text.data()),
                                                    static_cast<CFIndex>(text.size()), kCFStringEncodingUTF8, false)};
}

}  // namespace tavelle
