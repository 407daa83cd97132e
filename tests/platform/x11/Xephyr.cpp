#include "tests/platform/x11/Xephyr.h"

#include "platform/FatalError.h"
#include "platform/linux/x11/XcbReply.h"

namespace tavelle::x11::tests {

Xephyr::Xephyr(Repeats repeats) {
  if (repeats == Repeats::inside) stopRepeatsOfHost();
  nested_.emplace("Xephyr", std::vector<std::string>{"-screen", "1024x768"});
}

void Xephyr::stopRepeatsOfHost() {
  hostConnection_.reset(xcb_connect(host_.display().c_str(), nullptr));
  const std::uint32_t off = XCB_AUTO_REPEAT_MODE_OFF;
  const auto cookie = xcb_change_keyboard_control_checked(hostConnection_.get(), XCB_KB_AUTO_REPEAT_MODE, &off);
  const XcbReply<xcb_generic_error_t> error{xcb_request_check(hostConnection_.get(), cookie)};
  if (error || xcb_connection_has_error(hostConnection_.get()))
    fatalError("the host's keys cannot be kept from repeating");
}

}  // namespace tavelle::x11::tests
