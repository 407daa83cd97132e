#pragma once

#include "platform/UserNotificationCenter.h"
#include "platform/linux/GDBus.h"
#include "platform/linux/SessionBus.h"

#include <deque>
#include <memory>

namespace tavelle {

// org.freedesktop.Notifications on the session bus. Main thread only, and so are the completion handlers, of which none
// is called once this is gone.
//
// Each server is asked once what it can do, before the first notification that it is sent; those that come meanwhile
// wait for its answer, in order, also while the bus is still starting the server.
class DBusNotificationCenter : public UserNotificationCenter {
 public:
  explicit DBusNotificationCenter(SessionBus& bus);
  ~DBusNotificationCenter() override;

  // There is no permission to ask for: granted where there is a bus.
  void requestAuthorization(AuthorizationOptions options, std::function<void(bool granted)> completion) override;
  void add(NotificationRequest request, std::function<void(bool delivered)> completion) override;

 private:
  class Server;
  SessionBus& bus_;
  std::shared_ptr<Server> server_;  // shared with the replies that are still to come, weakly
};

}  // namespace tavelle
