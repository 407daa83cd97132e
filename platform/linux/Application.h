#pragma once

#include "platform/Application.h"
#include "platform/linux/AppleEvents.h"
#include "platform/linux/GObjectPtr.h"
#include "platform/linux/GSourcePtr.h"
#include "platform/linux/InstanceLock.h"
#include "platform/linux/SessionBus.h"

#include <gio/gio.h>

#include <functional>
#include <vector>

namespace tavelle {

inline constexpr const char* applicationID = "app.tavelle.Tavelle";

// The application object on GApplication: the main loop, one instance a session, activation and links over the session
// bus.
//
// SIGTERM, SIGINT and SIGHUP end it as terminate() does; the second signal of a kind ends the process there and then.
class LinuxApplication : public Application {
 public:
  // What the rest of the backend does when the application ends.
  struct Ending {
    // Takes away at once what the person sees and reaches: tray item, hotkeys.
    std::function<void()> withdraw;
    // Keeps the process alive until `done` is called: what other programs still need from it.
    std::function<void(std::function<void()> done)> handOver;
  };

  LinuxApplication(SessionBus& bus, LinuxAppleEventManager& events);
  ~LinuxApplication() override;

  void setEnding(Ending ending) { ending_ = std::move(ending); }

  void setDelegate(std::weak_ptr<ApplicationDelegate> delegate) override { delegate_ = std::move(delegate); }
  int run(std::span<char*> arguments) override;
  void activateIgnoringOtherApps(bool) override {}  // nothing of this process is on the screen but its tray item
  void terminate() override;

  // The screen is gone: ends the main loop now, as there is nobody left to hand anything to. A failure, unless the
  // program was ending anyway and only served the clipboard.
  void screenHasGone();

 private:
  static void onRegistered(GApplication*, GParamSpec*, gpointer self);
  static void onStartup(GApplication*, gpointer self);
  static void onActivate(GApplication*, gpointer self);
  static void onOpen(GApplication*, GFile** files, int count, const char* hint, gpointer self);

  void launch();
  void reopen();
  void openLink(GFile* link);
  bool passOn(std::span<char*> links);
  void watchSignals();
  template <int number>
  void watchSignal();
  void giveUpName() const;
  void quit(int exitStatus);
  template <typename Tell>
  void tellDelegate(Tell tell);

  SessionBus& bus_;
  LinuxAppleEventManager& events_;
  GObjectPtr<GApplication> application_;
  InstanceLock lock_;
  std::vector<GSourcePtr> signals_;
  std::weak_ptr<ApplicationDelegate> delegate_;
  Ending ending_;
  bool isAnotherRunning_ = false;
  bool isLaunchActivationDue_ = true;
  bool isEnding_ = false;
  int exitStatus_ = 0;
};

}  // namespace tavelle
