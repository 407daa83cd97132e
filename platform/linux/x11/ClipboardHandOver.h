#pragma once

#include "concurrency/MainActor.h"
#include "observation/Subscription.h"
#include "platform/linux/Deadline.h"
#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/SelectionOwner.h"

#include <chrono>
#include <functional>

namespace tavelle::x11 {

// Asks the clipboard manager to take the clipboard's contents over, so that they outlive this program
// (SAVE_TARGETS, freedesktop.org's ClipboardManager). Main thread only.
class ClipboardHandOver {
 public:
  // What a manager may take to fetch everything and to say so. Some never say it: one that has fetched everything by
  // then, be it when the contents appeared, has it.
  static constexpr std::chrono::milliseconds limit{3'000};

  ClipboardHandOver(Connection& connection, MainActor& actor, SelectionOwner& owner);
  ClipboardHandOver(const ClipboardHandOver&) = delete;
  ClipboardHandOver& operator=(const ClipboardHandOver&) = delete;

  // Calls `done` once, in a later turn of the loop, which has to go on serving requests meanwhile. Safe means that the
  // program may end and nothing is lost: a manager has the contents, or they were another program's, or there are none.
  void begin(std::function<void(bool isSafe)> done);

 private:
  bool hasContents() const { return owner_.owns() && !owner_.contents()->isEmpty(); }
  xcb_window_t manager() const;
  void ask();
  void handle(const xcb_generic_event_t& event);
  void finish(bool isSafe);

  Connection& connection_;
  MainActor& actor_;
  SelectionOwner& owner_;
  const xcb_atom_t managerSelection_;
  std::function<void(bool)> done_;
  Deadline deadline_;
  Subscription events_;
  Subscription lost_;
};

}  // namespace tavelle::x11
