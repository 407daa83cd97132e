#pragma once

#include "concurrency/MainActor.h"
#include "observation/Subject.h"
#include "platform/linux/x11/ClipboardContents.h"
#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/OutgoingTransfers.h"
#include "platform/linux/x11/PasteDebt.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <utility>

namespace tavelle::x11 {

// Our side of a selection: claims it and answers those who ask, as ICCCM 2.2 and 2.6 have it. Main thread only.
class SelectionOwner {
 public:
  SelectionOwner(Connection& connection, MainActor& actor, xcb_atom_t selection, PasteDebt& debt);
  SelectionOwner(const SelectionOwner&) = delete;
  SelectionOwner& operator=(const SelectionOwner&) = delete;

  // Claims the selection, with nothing to offer yet, also where it is ours already: all who watch it see that the
  // contents changed. False where the server refused.
  bool claim();

  bool owns() const { return contents_ != nullptr; }

  // What we offer; null where we do not own the selection.
  std::shared_ptr<const ClipboardContents> contents() const { return contents_; }

  // Adds to the offer of a selection that we own. What is added in the turn of the loop in which it was claimed is
  // there for everybody, because requests are answered in later turns.
  void offer(xcb_atom_t target, SelectionValue value);
  void setPassing() { contents_->setPassing(); }

  // Whether the program that this window belongs to has fetched all that we offer.
  bool hasGivenEverythingTo(xcb_window_t window) const;

  // Another program has taken the selection over, or the server is gone.
  Subject<>& lost() { return lostOwnership_; }

 private:
  void handle(const xcb_generic_event_t& event);
  void handleRequest(const xcb_selection_request_event_t& request);
  void handleClear(const xcb_generic_event_t& event);
  void lose();
  void noteLoss();

  bool isFromBeforeOwnership(xcb_timestamp_t time) const;
  bool convert(xcb_window_t requestor, xcb_atom_t target, xcb_atom_t property);
  bool convertMultiple(xcb_window_t requestor, xcb_atom_t property);
  void sendTargets(xcb_window_t requestor, xcb_atom_t property, const ClipboardContents& contents);
  std::optional<SelectionValue> valueOf(xcb_atom_t target, const ClipboardContents& contents) const;
  void notify(const xcb_selection_request_event_t& request, xcb_atom_t property);

  Connection& connection_;
  const xcb_atom_t selection_;
  const xcb_atom_t targets_;
  const xcb_atom_t multiple_;
  const xcb_atom_t timestamp_;
  const xcb_atom_t saveTargets_;
  const xcb_atom_t hint_;
  PasteDebt& debt_;
  OutgoingTransfers transfers_;
  std::shared_ptr<ClipboardContents> contents_;
  std::set<std::pair<std::uint32_t, xcb_atom_t>> given_;  // which client has fetched which target of these contents
  unsigned int claimRequest_ = 0;                         // sequence number of the last claim
  xcb_timestamp_t claimTime_ = 0;                         // of the last claim
  xcb_timestamp_t ownershipTime_ = 0;                     // of the first since we did not own it
  Subject<> lostOwnership_;
  Subscription events_;
  Subscription lost_;
};

}  // namespace tavelle::x11
