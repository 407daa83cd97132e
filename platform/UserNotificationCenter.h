#pragma once

#include <functional>
#include <string>

namespace tavelle {

// UNAuthorizationOptions.
enum class AuthorizationOptions : unsigned { badge = 1, sound = 2, alert = 4 };
constexpr AuthorizationOptions operator|(AuthorizationOptions a, AuthorizationOptions b) {
  return static_cast<AuthorizationOptions>(static_cast<unsigned>(a) | static_cast<unsigned>(b));
}

enum class NotificationSound { none, systemDefault };

// UNNotificationContent. Plain text: never read as markup.
struct NotificationContent {
  std::string title;
  std::string body;
  NotificationSound sound = NotificationSound::none;
};

// UNNotificationRequest without a trigger: it is delivered at once. A request with a new identifier is a new
// notification.
struct NotificationRequest {
  std::string identifier;
  NotificationContent content;
};

// The system's notifications (UserNotifications; org.freedesktop.Notifications on Linux). Nothing here waits;
// completion handlers may be called on any thread, or not at all where the system is absent.
class UserNotificationCenter {
 public:
  virtual ~UserNotificationCenter() = default;

  virtual void requestAuthorization(AuthorizationOptions options, std::function<void(bool granted)> completion) = 0;
  virtual void add(NotificationRequest request, std::function<void(bool delivered)> completion) = 0;
};

}  // namespace tavelle
