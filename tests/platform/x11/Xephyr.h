#pragma once

#include "tests/platform/x11/XServer.h"

#include <xcb/xcb.h>

#include <memory>
#include <optional>
#include <string>

namespace tavelle::x11::tests {

// An X server whose keyboard is a device of its own, as a person's is: a server in a window of another one, which hands
// on the keys that are pressed there. On a plain virtual server the only keyboard is the one for synthetic keys, so
// that a key let go synthetically is let go for good, and all harm that a held key can do stays hidden.
class Xephyr {
 public:
  // Which server makes the repeats of a key that is held: the nested one, as for a real keyboard, or the host, as a
  // remote desktop does, where they are seen as releases and presses.
  enum class Repeats { inside, fromHost };

  // The new server's display becomes $DISPLAY of this process.
  explicit Xephyr(Repeats repeats = Repeats::inside);

  // Where a Person presses keys that this server takes for physical ones.
  const std::string& hostDisplay() const { return host_.display(); }
  const std::string& display() const { return nested_->display(); }

 private:
  void stopRepeatsOfHost();

  struct Disconnect {
    void operator()(xcb_connection_t* xcb) const { xcb_disconnect(xcb); }
  };

  XServer host_;
  std::unique_ptr<xcb_connection_t, Disconnect> hostConnection_;
  std::optional<XServer> nested_;
};

}  // namespace tavelle::x11::tests
