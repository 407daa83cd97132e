#include "platform/linux/x11/OutgoingTransfers.h"

#include <algorithm>
#include <limits>

namespace tavelle::x11 {
namespace {

// What one request may carry, its own fields left out, and at most so much that the loop is not held up by it.
std::size_t largestPiece(xcb_connection_t* xcb) {
  constexpr std::size_t ownFields = 64;
  constexpr std::size_t enough = std::size_t{4} << 20;
  const std::size_t allowed = std::size_t{xcb_get_maximum_request_length(xcb)} * 4;
  return std::clamp(allowed, ownFields * 2, enough + ownFields) - ownFields;  // a whole number of 32-bit items
}

}  // namespace

OutgoingTransfers::OutgoingTransfers(Connection& connection, MainActor& actor)
    : connection_(connection),
      largestPiece_(largestPiece(connection)),
      deadline_(actor, [this] { dropStalled(); }),
      events_(connection.events().subscribe([this](const xcb_generic_event_t& event) { handle(event); })) {}

void OutgoingTransfers::send(xcb_window_t requestor, xcb_atom_t property, const SelectionValue& value) {
  const Key key{requestor, property};
  if (value.data->size() <= largestPiece_) return changeProperty(key, value, 0, value.data->size());

  auto& transfer = transfers_[key];  // a new request for the same property replaces the old one
  transfer.value = value;
  transfer.offset = 0;
  transfer.lastProgress = Clock::now();
  transfer.requestorEvents =
      connection_.select(requestor, XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY);
  constexpr std::size_t most = std::numeric_limits<std::uint32_t>::max();
  const auto announced = static_cast<std::uint32_t>(std::min(value.data->size(), most));
  xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, requestor, property, connection_.atom("INCR"), 32, 1,
                      &announced);
  setDeadline();
}

void OutgoingTransfers::handle(const xcb_generic_event_t& event) {
  if (transfers_.empty()) return;
  if (Connection::typeOf(event) == XCB_PROPERTY_NOTIFY) {
    const auto& notify = Connection::as<xcb_property_notify_event_t>(event);
    const auto at = transfers_.find({notify.window, notify.atom});
    if (at != transfers_.end() && notify.state == XCB_PROPERTY_DELETE) sendPiece(at);
  } else if (Connection::typeOf(event) == XCB_DESTROY_NOTIFY) {
    forget(Connection::as<xcb_destroy_notify_event_t>(event).window);
  }
}

// Each piece is sent when the one before has been taken away; an empty one is the end.
void OutgoingTransfers::sendPiece(std::map<Key, Transfer>::iterator at) {
  auto& [key, transfer] = *at;
  const auto size = std::min(largestPiece_, transfer.value.data->size() - transfer.offset);
  changeProperty(key, transfer.value, transfer.offset, size);
  connection_.flush();
  transfer.offset += size;
  transfer.lastProgress = Clock::now();
  if (size == 0) transfers_.erase(at);
  setDeadline();
}

void OutgoingTransfers::forget(xcb_window_t requestor) {
  std::erase_if(transfers_, [&](const auto& entry) { return entry.first.first == requestor; });
  setDeadline();
}

void OutgoingTransfers::dropStalled() {
  const auto now = Clock::now();
  std::erase_if(transfers_, [&](const auto& entry) { return entry.second.lastProgress + stallLimit <= now; });
  setDeadline();
}

void OutgoingTransfers::setDeadline() {
  if (transfers_.empty()) return deadline_.clear();
  auto oldest = Clock::time_point::max();
  for (const auto& [key, transfer] : transfers_) oldest = std::min(oldest, transfer.lastProgress);
  deadline_.set(std::chrono::ceil<std::chrono::milliseconds>(oldest + stallLimit - Clock::now()));
}

void OutgoingTransfers::changeProperty(const Key& at, const SelectionValue& value, std::size_t offset,
                                       std::size_t size) {
  const auto items = static_cast<std::uint32_t>(size / (value.format / 8));
  xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, at.first, at.second, value.type, value.format, items,
                      value.data->data() + offset);
}

}  // namespace tavelle::x11
