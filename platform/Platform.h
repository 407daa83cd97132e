#pragma once

#include "concurrency/MainActor.h"
#include "concurrency/SerialExecutor.h"
#include "platform/Accessibility.h"
#include "platform/AppleEvents.h"
#include "platform/Application.h"
#include "platform/Bundle.h"
#include "platform/CarbonEvents.h"
#include "platform/Keychain.h"
#include "platform/Pasteboard.h"
#include "platform/QuartzEvents.h"
#include "platform/StatusBar.h"
#include "platform/URLSession.h"
#include "platform/UserDefaults.h"
#include "platform/UserNotificationCenter.h"
#include "platform/Window.h"

#include <memory>

namespace tavelle {

// One operating system's services. A backend implements it; main() and the tests choose the one that is in use.
class Platform {
 public:
  virtual ~Platform() = default;

  virtual MainActor& mainActor() = 0;
  virtual Application& application() = 0;
  virtual AppleEventManager& sharedAppleEventManager() = 0;
  virtual StatusBar& systemStatusBar() = 0;
  virtual Pasteboard& generalPasteboard() = 0;
  virtual CarbonEvents& carbonEvents() = 0;
  virtual QuartzEvents& quartzEvents() = 0;
  virtual Accessibility& accessibility() = 0;
  virtual UserNotificationCenter& userNotificationCenter() = 0;
  virtual Keychain& keychain() = 0;
  virtual UserDefaults& standardUserDefaults() = 0;
  virtual Bundle& mainBundle() = 0;

  // The session of all that needs no configuration of its own (NSURLSession.sharedSession).
  virtual URLSession& sharedURLSession() = 0;
  virtual std::unique_ptr<URLSession> makeURLSession(const URLSessionConfiguration& configuration) = 0;
  virtual std::unique_ptr<SerialExecutor> makeSerialExecutor() = 0;

  virtual std::unique_ptr<Window> makeWindow(Rect contentRect, WindowStyleMask styleMask, BackingStoreType backing,
                                             bool defer) = 0;

  // The backend in use. There must be one.
  static Platform& current();

  // Puts `platform` in use for the life of this object. One at a time; the process-wide instances (Shared.h) that were
  // built on it end with it.
  class Use {
   public:
    explicit Use(Platform& platform);
    ~Use();
    Use(const Use&) = delete;
    Use& operator=(const Use&) = delete;
  };
};

}  // namespace tavelle
