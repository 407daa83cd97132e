#pragma once

#include "platform/UserNotificationCenter.h"

#include <string>

namespace tavelle {

// Tells the person what became of a run. No state beyond the notification center it is given, which must outlive it.
class NotificationHelper {
 public:
  explicit NotificationHelper(UserNotificationCenter& center) : center_(&center) {}

  // Shows a new notification, with the default sound, and returns at once. Where notifications are refused nothing
  // happens.
  void send(std::string title, std::string body) const;

 private:
  UserNotificationCenter* center_;
};

}  // namespace tavelle
