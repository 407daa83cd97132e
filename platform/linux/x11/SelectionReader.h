#pragma once

#include "concurrency/MainActor.h"
#include "concurrency/Task.h"
#include "observation/Subscription.h"
#include "platform/Data.h"
#include "platform/linux/Deadline.h"
#include "platform/linux/x11/Arrival.h"
#include "platform/linux/x11/Connection.h"

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <vector>

namespace tavelle::x11 {

// What an owner gave for a target. The type may well be another atom than the target: TEXT is answered in
// COMPOUND_TEXT.
struct SelectionAnswer {
  xcb_atom_t type = XCB_ATOM_NONE;
  std::uint8_t format = 8;
  Data data;  // items of format 32 are packed, four bytes each
  bool isIncremental = false;
};

// Reads a selection from the program that owns it, whole or in pieces (INCR), as ICCCM 2.4 and 2.7.2 have it.
//
// Every read ends in bounded time, and what it delivers are the bytes of one owner's one answer or nothing at all. To
// that end each conversion in flight has a property of its own, and one that was given up on never lends its property
// again: an answer that comes late finds nobody who could mistake it for another. Main thread only.
class SelectionReader {
 public:
  // An owner that sends nothing for this long is given up on...
  static constexpr std::chrono::milliseconds silenceLimit{2'000};
  // ... and so is one that keeps sending, but does not come to an end.
  static constexpr std::chrono::milliseconds readLimit{30'000};
  static constexpr std::size_t sizeLimit = std::size_t{1} << 30;

  SelectionReader(Connection& connection, MainActor& actor, xcb_atom_t selection);
  SelectionReader(const SelectionReader&) = delete;
  SelectionReader& operator=(const SelectionReader&) = delete;

  // Begins a new series of reads. An owner that fell silent in the last one is asked again: within a series it costs
  // one time limit, not one for each target. One that has answered before may have lost just one target's answer, and
  // is believed silent after the second.
  void startSeries();

  // No value where there is no owner, the owner refuses, dies or falls silent.
  Task<std::optional<SelectionAnswer>> read(xcb_atom_t target);

 private:
  using Clock = std::chrono::steady_clock;
  using Result = std::optional<SelectionAnswer>;

  struct Conversion {
    xcb_atom_t target = XCB_ATOM_NONE;
    xcb_timestamp_t time = XCB_CURRENT_TIME;
    unsigned int request = 0;  // sequence number
    Clock::time_point begun;
    Clock::time_point lastProgress;
    bool isAnswered = false;
    bool ownerChanged = false;
    std::size_t announcedSize = 0;
    SelectionAnswer answer;
    Arrival<Result> arrival;
  };
  using Conversions = std::map<xcb_atom_t, Conversion>;  // by property

  struct Piece {
    xcb_atom_t type;
    std::uint8_t format;
    std::size_t size;
  };

  Arrival<Result> begin(xcb_atom_t target);
  xcb_atom_t takeProperty();

  void handle(const xcb_generic_event_t& event);
  void handleNotify(const xcb_selection_notify_event_t& event);
  void handleRefusal(const xcb_selection_notify_event_t& event);
  void handleProperty(const xcb_property_notify_event_t& event);
  void handleOwnerChange(const xcb_generic_event_t& event);

  void readAnswer(Conversions::iterator at);
  void readPiece(Conversions::iterator at);
  std::optional<Piece> moveProperty(xcb_atom_t property, Data& into);
  void handleLateAnswer(xcb_atom_t property);

  void finish(Conversions::iterator at, Result result);
  void abandon(Conversions::iterator at);
  void giveUpOverdue();
  void failAll();
  void setDeadline();
  Clock::time_point dueTime(const Conversion& conversion) const;

  Connection& connection_;
  const xcb_atom_t selection_;
  const xcb_atom_t incr_;
  std::uint8_t ownerChangeEvent_ = 0;  // 0 where the server cannot tell
  Conversions conversions_;
  std::vector<xcb_atom_t> freeProperties_;
  std::set<xcb_atom_t> retiredProperties_;  // an answer may still come there
  unsigned propertiesMade_ = 0;
  std::optional<xcb_timestamp_t> seriesTime_;
  bool hasOwnerAnswered_ = false;  // since it last let a conversion run out of time
  bool isOwnerSilent_ = false;
  Deadline deadline_;
  Subscription events_;
  Subscription lost_;
};

}  // namespace tavelle::x11
