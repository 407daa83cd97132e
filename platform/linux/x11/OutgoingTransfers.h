#pragma once

#include "concurrency/MainActor.h"
#include "observation/Subscription.h"
#include "platform/linux/Deadline.h"
#include "platform/linux/x11/ClipboardContents.h"
#include "platform/linux/x11/Connection.h"

#include <chrono>
#include <map>
#include <utility>

namespace tavelle::x11 {

// Hands selection values to other programs: at once where one request can carry it, else in pieces as the requestor
// takes them (INCR, ICCCM 2.7.2), any number side by side. A transfer holds on to the bytes that it began with. A
// requestor that goes away or stops taking is forgotten. Main thread only.
class OutgoingTransfers {
 public:
  // A requestor has this long to take a piece.
  static constexpr std::chrono::milliseconds stallLimit{10'000};

  OutgoingTransfers(Connection& connection, MainActor& actor);
  OutgoingTransfers(const OutgoingTransfers&) = delete;
  OutgoingTransfers& operator=(const OutgoingTransfers&) = delete;

  // Puts the value, or the announcement of its pieces, on the requestor's property.
  void send(xcb_window_t requestor, xcb_atom_t property, const SelectionValue& value);

  // Whether pieces of something are still to be taken.
  bool isBusy() const { return !transfers_.empty(); }

 private:
  using Clock = std::chrono::steady_clock;
  using Key = std::pair<xcb_window_t, xcb_atom_t>;

  struct Transfer {
    SelectionValue value;
    std::size_t offset = 0;
    Clock::time_point lastProgress;
    Subscription requestorEvents;
  };

  void handle(const xcb_generic_event_t& event);
  void sendPiece(std::map<Key, Transfer>::iterator at);
  void forget(xcb_window_t requestor);
  void dropStalled();
  void setDeadline();
  void changeProperty(const Key& at, const SelectionValue& value, std::size_t offset, std::size_t size);

  Connection& connection_;
  const std::size_t largestPiece_;
  std::map<Key, Transfer> transfers_;
  Deadline deadline_;
  Subscription events_;
};

}  // namespace tavelle::x11
