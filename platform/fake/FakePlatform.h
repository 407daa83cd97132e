#pragma once

#include "platform/Platform.h"
#include "platform/fake/AppleEvents.h"
#include "platform/fake/CarbonEvents.h"
#include "platform/fake/EventLog.h"
#include "platform/fake/Keychain.h"
#include "platform/fake/MainActor.h"
#include "platform/fake/Pasteboard.h"
#include "platform/fake/QuartzEvents.h"
#include "platform/fake/URLSession.h"
#include "platform/fake/UserDefaults.h"
#include "platform/fake/Window.h"

#include <deque>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace tavelle {

struct FakeAccessibility : Accessibility {
  explicit FakeAccessibility(EventLog& eventLog) : log(eventLog) {}
  bool isProcessTrusted() override;
  bool isProcessTrustedWithOptions(const std::map<std::string, bool>& options) override;

  EventLog& log;
  bool trusted = true;
  std::deque<bool> nextAnswers;  // what the next calls say, before `trusted` counts
  std::vector<std::map<std::string, bool>> prompts;
};

struct FakeUserNotificationCenter : UserNotificationCenter {
  explicit FakeUserNotificationCenter(EventLog& eventLog) : log(eventLog) {}
  void requestAuthorization(AuthorizationOptions options, std::function<void(bool)> completion) override;
  void add(NotificationRequest request, std::function<void(bool)> completion) override;

  EventLog& log;
  bool granted = true;
  std::function<void()> onAdd = [] {};  // as each notification comes
  std::vector<AuthorizationOptions> authorizations;
  std::vector<NotificationRequest> requests;
};

struct FakeImage : Image {
  void setTemplate(bool value) override { isTemplate = value; }
  bool isTemplate = false;
};

struct FakeBundle : Bundle {
  std::optional<InfoValue> objectForInfoDictionaryKey(const std::string& key) override;
  std::shared_ptr<Image> imageNamed(const std::string& name) override;

  std::map<std::string, InfoValue> info;
  std::map<std::string, std::shared_ptr<FakeImage>> images{{"MenuBarIcon", std::make_shared<FakeImage>()}};
};

// The status bar and its items in one: what the last item shows.
struct FakeStatusBar : StatusBar {
  explicit FakeStatusBar(EventLog& eventLog) : log(eventLog) {}
  std::unique_ptr<StatusItem> statusItemWithLength(double length) override;

  // Chooses the entry with this title, as a click does.
  void choose(const std::string& title) const;

  EventLog& log;
  std::vector<double> lengths;
  bool givesButton = true;
  std::shared_ptr<Image> image;
  Menu menu;
};

struct FakeApplication : Application {
  explicit FakeApplication(EventLog& eventLog) : log(eventLog) {}
  void setDelegate(std::weak_ptr<ApplicationDelegate> value) override { delegate = std::move(value); }
  int run(std::span<char*>) override;
  void activateIgnoringOtherApps(bool flag) override;
  void terminate() override;

  EventLog& log;
  std::weak_ptr<ApplicationDelegate> delegate;

 private:
  bool isEnding_ = false;
};

// The in-memory backend. Every service is public, with its state; what the services did, in order, is in `log`.
class FakePlatform : public Platform {
 public:
  MainActor& mainActor() override { return loop; }
  Application& application() override { return app; }
  AppleEventManager& sharedAppleEventManager() override { return appleEvents; }
  StatusBar& systemStatusBar() override { return statusBar; }
  Pasteboard& generalPasteboard() override { return pasteboard; }
  CarbonEvents& carbonEvents() override { return hotKeys; }
  QuartzEvents& quartzEvents() override { return keys; }
  Accessibility& accessibility() override { return access; }
  UserNotificationCenter& userNotificationCenter() override { return notifications; }
  Keychain& keychain() override { return secrets; }
  UserDefaults& standardUserDefaults() override { return defaults; }
  Bundle& mainBundle() override { return bundle; }
  URLSession& sharedURLSession() override { return sharedSession; }
  std::unique_ptr<URLSession> makeURLSession(const URLSessionConfiguration& configuration) override;
  std::unique_ptr<SerialExecutor> makeSerialExecutor() override { return std::make_unique<FakeSerialExecutor>(loop); }
  std::unique_ptr<Window> makeWindow(Rect contentRect, WindowStyleMask styleMask, BackingStoreType backing,
                                     bool defer) override;

  EventLog log;
  FakeMainActor loop{log};
  FakeApplication app{log};
  FakeAppleEventManager appleEvents;
  FakeStatusBar statusBar{log};
  FakePasteboard pasteboard{log};
  FakeCarbonEvents hotKeys{log};
  FakeQuartzEvents keys{log};
  FakeAccessibility access{log};
  FakeUserNotificationCenter notifications{log};
  FakeKeychain secrets;
  FakeUserDefaults defaults;
  FakeBundle bundle;
  FakeURLSession::Exchange network;  // of the sessions that were made
  FakeURLSession::Exchange sharedNetwork;
  FakeURLSession sharedSession{sharedNetwork};
  std::vector<FakeWindow*> windows;  // all that were made; their owner may have dropped them
};

}  // namespace tavelle
