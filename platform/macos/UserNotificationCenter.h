#pragma once

#include "platform/UserNotificationCenter.h"

namespace tavelle {

// UNUserNotificationCenter.currentNotificationCenter. Where the program runs outside of a bundle, which the center
// answers by an exception, nothing is asked and nothing delivered.
class MacUserNotificationCenter : public UserNotificationCenter {
 public:
  void requestAuthorization(AuthorizationOptions options, std::function<void(bool granted)> completion) override;
  void add(NotificationRequest request, std::function<void(bool delivered)> completion) override;
};

}  // namespace tavelle
