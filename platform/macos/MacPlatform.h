#pragma once

#include "platform/Platform.h"
#include "platform/macos/Accessibility.h"
#include "platform/macos/AppleEvents.h"
#include "platform/macos/Application.h"
#include "platform/macos/Bundle.h"
#include "platform/macos/CarbonEvents.h"
#include "platform/macos/Keychain.h"
#include "platform/macos/MainActor.h"
#include "platform/macos/Pasteboard.h"
#include "platform/macos/QuartzEvents.h"
#include "platform/macos/StatusBar.h"
#include "platform/macos/URLSession.h"
#include "platform/macos/UserDefaults.h"
#include "platform/macos/UserNotificationCenter.h"

namespace tavelle {

// macOS. The members forward to the system: what to call when, and what to do on failure, is decided above.
class MacPlatform : public Platform {
 public:
  MainActor& mainActor() override { return mainActor_; }
  Application& application() override { return application_; }
  AppleEventManager& sharedAppleEventManager() override { return appleEvents_; }
  StatusBar& systemStatusBar() override { return statusBar_; }
  Pasteboard& generalPasteboard() override { return pasteboard_; }
  CarbonEvents& carbonEvents() override { return carbonEvents_; }
  QuartzEvents& quartzEvents() override { return quartzEvents_; }
  Accessibility& accessibility() override { return accessibility_; }
  UserNotificationCenter& userNotificationCenter() override { return notificationCenter_; }
  Keychain& keychain() override { return keychain_; }
  UserDefaults& standardUserDefaults() override { return userDefaults_; }
  Bundle& mainBundle() override { return bundle_; }

  URLSession& sharedURLSession() override { return *sharedURLSession_; }
  std::unique_ptr<URLSession> makeURLSession(const URLSessionConfiguration& configuration) override;
  std::unique_ptr<SerialExecutor> makeSerialExecutor() override;

  std::unique_ptr<Window> makeWindow(Rect contentRect, WindowStyleMask styleMask, BackingStoreType backing,
                                     bool defer) override;

 private:
  DispatchMainActor mainActor_;
  MacApplication application_;
  MacAppleEventManager appleEvents_;
  MacStatusBar statusBar_;
  MacPasteboard pasteboard_;
  MacCarbonEvents carbonEvents_;
  MacQuartzEvents quartzEvents_;
  MacAccessibility accessibility_;
  MacUserNotificationCenter notificationCenter_;
  MacKeychain keychain_;
  MacUserDefaults userDefaults_;
  MacBundle bundle_;
  std::unique_ptr<MacURLSession> sharedURLSession_ = MacURLSession::shared();
};

}  // namespace tavelle
