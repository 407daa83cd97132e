#pragma once

#include "platform/linux/GObjectPtr.h"

#include <gio/gio.h>

namespace tavelle {

// The program's one connection to the session bus. The bus may be missing, and may go away at any time: the connection
// is then closed, which is told once, and calls on it fail. Neither ends the process. Main thread only.
class SessionBus {
 public:
  // Connects when the connection is first asked for.
  SessionBus() = default;
  explicit SessionBus(GObjectPtr<GDBusConnection> connection);

  // Takes the connection that is there already; null for none.
  void adopt(GDBusConnection* connection);

  // Null where there is no bus. Main loop callbacks of its own are delivered on the default main context.
  GDBusConnection* connection();

 private:
  bool isKnown_ = false;
  GObjectPtr<GDBusConnection> connection_;
};

}  // namespace tavelle
