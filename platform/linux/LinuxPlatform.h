#pragma once

#include "observation/Subscription.h"
#include "platform/Platform.h"
#include "platform/linux/AppleEvents.h"
#include "platform/linux/Application.h"
#include "platform/linux/Bundle.h"
#include "platform/linux/Keychain.h"
#include "platform/linux/MainActor.h"
#include "platform/linux/SerialExecutor.h"
#include "platform/linux/SessionBus.h"
#include "platform/linux/StatusBar.h"
#include "platform/linux/URLSession.h"
#include "platform/linux/UserDefaults.h"
#include "platform/linux/UserNotificationCenter.h"
#include "platform/linux/x11/Desktop.h"

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <variant>

namespace tavelle {

// A Linux desktop: X11, the session bus, the Secret Service, and the program that talks to servers.
class LinuxPlatform : public Platform {
 public:
  // The platform, or the exit status of a process that has nothing more to do: where its command line only asks
  // something, or where there is no desktop, which is then said on standard error. `arguments` are main()'s.
  static std::variant<std::unique_ptr<LinuxPlatform>, int> start(std::span<char*> arguments);

  ~LinuxPlatform() override;

  MainActor& mainActor() override { return mainActor_; }
  Application& application() override { return application_; }
  AppleEventManager& sharedAppleEventManager() override { return appleEvents_; }
  StatusBar& systemStatusBar() override { return statusBar_; }
  Pasteboard& generalPasteboard() override { return desktop_->pasteboard(); }
  CarbonEvents& carbonEvents() override { return desktop_->carbonEvents(); }
  QuartzEvents& quartzEvents() override { return desktop_->quartzEvents(); }
  Accessibility& accessibility() override { return desktop_->accessibility(); }
  UserNotificationCenter& userNotificationCenter() override { return notificationCenter_; }
  Keychain& keychain() override { return keychain_; }
  UserDefaults& standardUserDefaults() override;
  Bundle& mainBundle() override { return bundle_; }

  URLSession& sharedURLSession() override { return sharedURLSession_; }
  std::unique_ptr<URLSession> makeURLSession(const URLSessionConfiguration& configuration) override;
  std::unique_ptr<SerialExecutor> makeSerialExecutor() override;
  std::unique_ptr<Window> makeWindow(Rect contentRect, WindowStyleMask styleMask, BackingStoreType backing,
                                     bool defer) override;

 private:
  LinuxPlatform();
  bool openDesktop();
  void getReadyForModel();
  void tellTrouble(const std::string& trouble, const std::string& cause);

  GLibMainActor mainActor_;
  SessionBus bus_;
  LinuxAppleEventManager appleEvents_;
  LinuxApplication application_{bus_, appleEvents_};
  std::unique_ptr<x11::Desktop> desktop_;
  DBusStatusBar statusBar_{bus_, mainActor_};
  DBusNotificationCenter notificationCenter_{bus_};
  SecretServiceKeychain keychain_;
  std::optional<JSONUserDefaults> userDefaults_;  // read when first asked for: not in a second instance
  std::shared_ptr<TransferProcess> transfers_ = std::make_shared<TransferProcess>();
  LinuxSerialExecutor preparations_;
  LinuxURLSession sharedURLSession_{URLSessionConfiguration{}, transfers_};
  LinuxBundle bundle_{LinuxBundle::standardFolder()};
  Subscription desktopLost_;
  Subscription editingKeys_;
};

}  // namespace tavelle
