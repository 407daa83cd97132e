#pragma once

#include "concurrency/MainActor.h"
#include "platform/linux/Deadline.h"
#include "platform/linux/x11/ClipboardContents.h"
#include "platform/linux/x11/Connection.h"

#include <chrono>
#include <memory>

namespace tavelle::x11 {

// After a paste key stroke the clipboard's contents are owed to the program that received it: should it come for them
// only when they have been replaced, it is still given these and not their successors. Main thread only.
class PasteDebt {
 public:
  struct Limits {
    // Applications that are well fetch within 23 ms of the key; one that stalls has this long.
    std::chrono::milliseconds claim{2'000};
    // Toolkits ask several times for one paste. From the first value served the rest of it has this long.
    std::chrono::milliseconds graceAfterServing{500};
  };

  PasteDebt(Connection& connection, MainActor& actor, Limits limits);

  // A paste key stroke went to the window with the focus, or to an unknown one (XCB_WINDOW_NONE): then whoever asks
  // first is taken for the one, unless it is the clipboard manager.
  void incur(xcb_window_t focus, std::shared_ptr<const ClipboardContents> owed);

  // What to give to this requestor instead of the present contents; null where it is owed nothing.
  std::shared_ptr<const ClipboardContents> owedTo(xcb_window_t requestor);

  // A value out of owedTo() was given to its requestor.
  void noteServed();

  void cancel();

 private:
  bool isClipboardManager(xcb_window_t requestor) const;

  Connection& connection_;
  Limits limits_;
  xcb_window_t creditor_ = XCB_WINDOW_NONE;
  std::shared_ptr<const ClipboardContents> owed_;
  bool isServed_ = false;
  Deadline expiry_;
};

}  // namespace tavelle::x11
