#pragma once

#include "observation/Subject.h"
#include "platform/linux/x11/EventMasks.h"
#include "platform/linux/x11/XcbReply.h"

#include <glib.h>
#include <xcb/xcb.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <deque>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace tavelle::x11 {

// The program's one connection to the X server, served by the default GLib main context. Main thread only.
//
// Errors of unchecked requests are dropped: they tell of windows that went away in the meantime, which happens all the
// time to a program that answers others. A request whose failure matters is checked where it is made.
class Connection {
 public:
  // Null where no server answers on $DISPLAY.
  static std::unique_ptr<Connection> open();
  ~Connection();
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  xcb_connection_t* xcb() const { return xcb_; }
  operator xcb_connection_t*() const { return xcb_; }  // NOLINT(google-explicit-constructor): every XCB call takes one

  const xcb_screen_t& screen() const { return *screen_; }
  xcb_window_t root() const { return screen_->root; }

  // An unmapped window of ours that receives PropertyNotify: requestor, selection owner, source of time stamps.
  xcb_window_t window() const { return window_; }

  // Interned once, then remembered.
  xcb_atom_t atom(std::string_view name);
  // Empty where the server knows no such atom.
  std::string atomName(xcb_atom_t atom);
  // The same for many, in one round trip.
  std::vector<std::string> atomNames(std::span<const xcb_atom_t> atoms);

  // Null where the server lacks the extension.
  const xcb_query_extension_reply_t* extension(xcb_extension_t& id) const;

  // What the resources that one client made have in common.
  std::uint32_t clientOf(xcb_window_t resource) const;
  bool isSameClient(xcb_window_t a, xcb_window_t b) const { return clientOf(a) == clientOf(b); }

  // The window that owns a selection now, or XCB_WINDOW_NONE.
  xcb_window_t ownerOf(xcb_atom_t selection) const;

  void flush() const { xcb_flush(xcb_); }

  // The server's clock, now: what requests that claim something have to carry. Waits for the server, and for no other
  // program. XCB_CURRENT_TIME where the server is gone.
  xcb_timestamp_t serverTime();

  // Every event, in order. The type goes by typeOf(), which leaves out the bit that marks events sent by other clients.
  Subject<xcb_generic_event_t>& events() { return events_; }
  static std::uint8_t typeOf(const xcb_generic_event_t& event) { return event.response_type & 0x7F; }
  template <typename Event>
  static const Event& as(const xcb_generic_event_t& event) {
    return reinterpret_cast<const Event&>(event);
  }

  // Whether the server had carried out the request with this sequence number when it sent the event.
  static bool isAfter(const xcb_generic_event_t& event, unsigned int request) {
    return static_cast<std::int32_t>(event.full_sequence - request) >= 0;
  }

  // Events of a window, for as long as the token lives. The only way to select core events: a mask set past this one
  // would take away what another part of the program has selected there.
  Subscription select(xcb_window_t window, std::uint32_t eventMask) { return eventMasks_.select(window, eventMask); }

  // Sends one of the server's own kinds of event to the clients that selected it there; with no mask, to the window's
  // client.
  template <typename Event>
  void sendEvent(xcb_window_t window, std::uint32_t eventMask, const Event& event) const {
    static_assert(sizeof(Event) <= 32);
    std::array<char, 32> wire{};  // every event is that long on the wire, whatever its kind needs
    std::memcpy(wire.data(), &event, sizeof event);
    xcb_send_event(xcb_, 0, window, eventMask, wire.data());
  }

  bool isLost() const { return xcb_connection_has_error(xcb_) != 0; }

  // The server is gone. Sent once.
  Subject<>& lost() { return lost_; }

 private:
  struct Source;
  struct DestroySource {
    void operator()(GSource* source) const;
  };

  Connection(xcb_connection_t* xcb, const xcb_screen_t* screen);
  void dispatch();
  bool hasQueuedEvent();
  XcbReply<xcb_generic_event_t> nextEvent();

  xcb_connection_t* xcb_;
  const xcb_screen_t* screen_;
  xcb_window_t window_;
  EventMasks eventMasks_;
  Subscription ownEvents_;
  std::unordered_map<std::string, xcb_atom_t> atoms_;
  std::unordered_map<xcb_atom_t, std::string> atomNames_;
  std::deque<XcbReply<xcb_generic_event_t>> queue_;  // read from XCB, not yet passed on
  std::unique_ptr<GSource, DestroySource> source_;
  Subject<xcb_generic_event_t> events_;
  Subject<> lost_;
};

}  // namespace tavelle::x11
