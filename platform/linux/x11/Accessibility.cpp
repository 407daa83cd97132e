#include "platform/linux/x11/Accessibility.h"

#include <xcb/xtest.h>

namespace tavelle::x11 {

X11Accessibility::X11Accessibility(const Connection& connection) : connection_(connection) {}

bool X11Accessibility::isProcessTrusted() {
  return !connection_.isLost() && connection_.extension(xcb_test_id) != nullptr;
}

bool X11Accessibility::isProcessTrustedWithOptions(const std::map<std::string, bool>&) {
  return isProcessTrusted();
}

}  // namespace tavelle::x11
