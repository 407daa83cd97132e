#include "platform/linux/x11/Accessibility.h"

#include <xcb/xtest.h>

#include <cstdio>

namespace tavelle::x11 {

X11Accessibility::X11Accessibility(const Connection& connection) : connection_(connection) {}

bool X11Accessibility::isProcessTrusted() {
  return !connection_.isLost() && connection_.extension(xcb_test_id) != nullptr;
}

// Nobody can be asked: it is the screen's affair.
bool X11Accessibility::isProcessTrustedWithOptions(const std::map<std::string, bool>& options) {
  const bool isTrusted = isProcessTrusted();
  const auto prompt = options.find(trustedCheckOptionPrompt);
  if (!isTrusted && prompt != options.end() && prompt->second) {
    std::fputs("Tavelle: this screen takes no synthetic keys (XTEST): nothing can be copied or pasted\n", stderr);
  }
  return isTrusted;
}

}  // namespace tavelle::x11
