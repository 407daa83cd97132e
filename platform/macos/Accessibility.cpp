#include "platform/macos/Accessibility.h"

#include "platform/macos/CFDictionary.h"

#include <ApplicationServices/ApplicationServices.h>

namespace tavelle {

bool MacAccessibility::isProcessTrusted() {
  return AXIsProcessTrusted();
}

bool MacAccessibility::isProcessTrustedWithOptions(const std::map<std::string, bool>& options) {
  std::vector<CFRef<CFStringRef>> names;
  std::vector<std::pair<CFStringRef, CFTypeRef>> entries;
  for (const auto& [name, value] : options) {
    names.push_back(cfString(name));
    entries.emplace_back(names.back().get(), value ? kCFBooleanTrue : kCFBooleanFalse);
  }
  return AXIsProcessTrustedWithOptions(cfDictionary(entries).get());
}

}  // namespace tavelle
