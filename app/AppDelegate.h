#pragma once

#include "app/ClipboardManager.h"
#include "app/NotificationHelper.h"
#include "concurrency/Task.h"
#include "observation/Subscription.h"
#include "platform/AppleEvents.h"
#include "platform/Application.h"
#include "platform/StatusBar.h"
#include "platform/UUID.h"
#include "platform/Window.h"
#include "settings/RewriteProfile.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace tavelle {

class Platform;

// The application's spine: the item in the menu bar, the hotkeys, and the run that a hotkey starts. Main thread only.
// It is held weakly by all that it sets up, so that nothing keeps it alive or calls it once it is gone.
class AppDelegate : public ApplicationDelegate, public std::enable_shared_from_this<AppDelegate> {
 public:
  // Must be owned by a shared_ptr, and be gone before the platform is. Settings, hotkeys and the service are the shared
  // ones, first asked for at launch: a second instance, which never launches, touches none of them.
  explicit AppDelegate(Platform& platform);

  // Listens to the links of the application's scheme, before one that launched it could come.
  void applicationWillFinishLaunching() override;

  void applicationDidFinishLaunching() override;
  void applicationShouldHandleReopen() override;

  // Ends a run that is in progress: the pasteboard comes back at once, and nothing more is pasted or told.
  void applicationWillTerminate() override;

  // Replaces the selected text, in whatever application has the keyboard, by the model's answer under that profile.
  // Returns as soon as the run has started; while one is in progress further calls are dropped.
  void performReword(UUID profileID);

  // The menu's "Reword Selection": the first profile, if there is one.
  void rewordAction();

  // Shows the settings window, making it first where there is none yet, and brings the application to the front.
  void openSettings();

  void quitApp();

  // A link of the scheme "tavelle" was opened: the host "auth" is the callback of a sign-in, and all else nobody's.
  void handleURLEvent(const AppleEvent& event, AppleEvent& reply);

  bool isProcessing() const { return isProcessing_; }
  const ClipboardManager& clipboardManager() const { return clipboardManager_; }

 private:
  void setupMenuBar();
  void registerHotkeys();
  Menu menu();

  // The run, and its middle that may fail (RewordPipeline.cpp).
  static Task<void> reword(std::shared_ptr<AppDelegate> self, RewriteProfile profile);
  Task<bool> replaceSelection(RewriteProfile profile);
  void postKeystroke(std::uint16_t keyCode);
  void askForAccessibility();
  void notify(std::string body);

  Platform& platform_;
  NotificationHelper notifications_;

  std::unique_ptr<StatusItem> statusItem_;
  ClipboardManager clipboardManager_;
  bool isProcessing_ = false;
  bool isTerminating_ = false;
  std::unique_ptr<Window> settingsWindow_;
  std::vector<Subscription> cancellables_;
};

}  // namespace tavelle
