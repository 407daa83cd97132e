#include "platform/macos/UserNotificationCenter.h"

#import <UserNotifications/UserNotifications.h>

#include "platform/macos/Strings.h"

#include <utility>

namespace tavelle {
namespace {

UNUserNotificationCenter* currentCenter() {
  return NSBundle.mainBundle.bundleIdentifier ? UNUserNotificationCenter.currentNotificationCenter : nil;
}

NSString* orEmpty(NSString* text) {
  return text ? text : @"";
}

UNNotificationContent* content(const NotificationContent& given) {
  UNMutableNotificationContent* const content = [UNMutableNotificationContent new];
  content.title = orEmpty(nsString(given.title));
  content.body = orEmpty(nsString(given.body));
  content.sound = given.sound == NotificationSound::systemDefault ? UNNotificationSound.defaultSound : nil;
  return content;
}

}  // namespace

void MacUserNotificationCenter::requestAuthorization(AuthorizationOptions options,
                                                     std::function<void(bool)> completion) {
  UNUserNotificationCenter* const center = currentCenter();
  if (!center) return completion(false);
  const auto owned = std::move(completion);
  [center requestAuthorizationWithOptions:static_cast<UNAuthorizationOptions>(options)
                        completionHandler:^(BOOL granted, NSError*) {
                          owned(granted);
                        }];
}

void MacUserNotificationCenter::add(NotificationRequest request, std::function<void(bool)> completion) {
  UNUserNotificationCenter* const center = currentCenter();
  if (!center) return completion(false);
  const auto owned = std::move(completion);
  [center addNotificationRequest:[UNNotificationRequest requestWithIdentifier:nsString(request.identifier)
                                                                      content:content(request.content)
                                                                      trigger:nil]
           withCompletionHandler:^(NSError* error) {
             owned(error == nil);
           }];
}

}  // namespace tavelle
