#include "tests/platform/x11/Person.h"

#include "platform/FatalError.h"

#include <xcb/xtest.h>

namespace tavelle::x11::tests {

Person::Person(const std::string& display) : xcb_(xcb_connect(display.c_str(), nullptr)) {
  if (xcb_connection_has_error(xcb_.get())) fatalError("no connection to the person's display");
}

void Person::fake(std::uint8_t type, std::uint8_t detail) {
  const auto cookie = xcb_test_fake_input_checked(xcb_.get(), type, detail, XCB_CURRENT_TIME, XCB_WINDOW_NONE, 0, 0, 0);
  const XcbReply<xcb_generic_error_t> error{xcb_request_check(xcb_.get(), cookie)};
  if (error) fatalError("the server refuses the person's input");
}

}  // namespace tavelle::x11::tests
