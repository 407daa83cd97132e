#pragma once

#include "concurrency/MainActor.h"
#include "concurrency/Task.h"
#include "platform/linux/Deadline.h"
#include "platform/linux/x11/Arrival.h"
#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/SelectionOwner.h"
#include "platform/linux/x11/WindowPing.h"

#include <chrono>
#include <variant>
#include <vector>

namespace tavelle::x11 {

// Knows whether a copy key stroke may still have a result to come. The clipboard was claimed and emptied before the
// key, so the result is that another program takes it. Until then the application may be at work (1.1 s for 1 MB in a
// GTK 4 text view), or there may have been nothing to copy, which no application says. Main thread only.
class CopyWatch {
 public:
  // An application that has answered two pings, the second one sent after the first one's answer, has handled the key
  // that was sent before them. One is not enough: GTK 4 answers as soon as it has fetched its events, while the key
  // still waits in its own queue; it fetches more only when that queue is empty. Most have taken the clipboard by then;
  // Emacs does so from a timer, 202 ms after the key at best and up to 300 ms when it is slow to start. Not before this
  // time is it said that nothing was selected.
  static constexpr std::chrono::milliseconds leastWait{400};
  // What an application may take whose window never answers pings: nothing but time tells it from one with nothing
  // selected.
  static constexpr std::chrono::milliseconds waitWithoutPing{1'000};
  // What an application may take that has promised to answer and has not yet.
  static constexpr std::chrono::milliseconds waitForAnswer{10'000};

  CopyWatch(Connection& connection, MainActor& actor, SelectionOwner& owner);
  CopyWatch(const CopyWatch&) = delete;
  CopyWatch& operator=(const CopyWatch&) = delete;

  // A copy key stroke was just sent to the window with the focus.
  void begin(xcb_window_t focus);
  void cancel() { end(); }

  bool isPending() const { return isPending_; }

  // Goes on when another program has taken the clipboard, or when none is expected to any more.
  Task<void> settled();

 private:
  using Clock = std::chrono::steady_clock;

  void ask();
  void noteAnswer();
  void end();

  SelectionOwner& owner_;
  bool isPending_ = false;
  Clock::time_point sent_;
  xcb_window_t focus_ = XCB_WINDOW_NONE;
  int answers_ = 0;
  WindowPing ping_;
  Deadline asking_;  // in the next turn of the loop: whoever posts a key counts the time from there
  Deadline patience_;
  std::vector<Arrival<std::monostate>> waiting_;
  Subscription lost_;
};

}  // namespace tavelle::x11
