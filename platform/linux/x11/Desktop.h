#pragma once

#include "concurrency/MainActor.h"
#include "observation/Subscription.h"
#include "platform/linux/x11/Accessibility.h"
#include "platform/linux/x11/CarbonEvents.h"
#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/EditingKey.h"
#include "platform/linux/x11/HeldKeys.h"
#include "platform/linux/x11/HotKeyGrabs.h"
#include "platform/linux/x11/Keyboard.h"
#include "platform/linux/x11/Pasteboard.h"
#include "platform/linux/x11/PointerPresses.h"
#include "platform/linux/x11/QuartzEvents.h"

#include <functional>
#include <memory>

namespace tavelle::x11 {

// All services of an X11 desktop, on one connection to its server. Main thread only.
class Desktop {
 public:
  // Null where there is no X server to be reached.
  static std::unique_ptr<Desktop> open(MainActor& mainActor);
  Desktop(const Desktop&) = delete;
  Desktop& operator=(const Desktop&) = delete;

  X11Pasteboard& pasteboard() { return pasteboard_; }
  X11CarbonEvents& carbonEvents() { return carbonEvents_; }
  X11QuartzEvents& quartzEvents() { return quartzEvents_; }
  X11Accessibility& accessibility() { return accessibility_; }
  PointerPresses& pointerPresses() { return pointerPresses_; }
  PostedEditingKeys& postedEditingKeys() { return postedEditingKeys_; }

  // The server is gone, and the person's session with it. Sent once.
  Subject<>& lost() { return connection_->lost(); }

  // Calls `done` when the program may end without taking the clipboard's contents from the person: once a clipboard
  // manager has them, or, where there is none, once another program puts something there.
  void handOver(std::function<void()> done);

 private:
  Desktop(std::unique_ptr<Connection> connection, MainActor& mainActor);

  std::unique_ptr<Connection> connection_;
  Keyboard keyboard_;
  HotKeyGrabs grabs_;
  HeldKeys heldKeys_;
  PostedEditingKeys postedEditingKeys_;
  X11CarbonEvents carbonEvents_;
  X11QuartzEvents quartzEvents_;
  X11Pasteboard pasteboard_;
  X11Accessibility accessibility_;
  PointerPresses pointerPresses_;
  Subscription contentsLost_;
};

}  // namespace tavelle::x11
