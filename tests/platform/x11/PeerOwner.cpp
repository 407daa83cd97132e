#include "tests/platform/x11/PeerOwner.h"

#include "platform/FatalError.h"

#include <algorithm>

namespace tavelle::x11::tests {

PeerOwner::PeerOwner(const std::string& selection) : connection_(Connection::open()) {
  if (!connection_) fatalError("no X server for the test");
  selection_ = connection_->atom(selection);
  events_ = connection_->events().subscribe([this](const xcb_generic_event_t& event) { handle(event); });
}

void PeerOwner::own() {
  xcb_set_selection_owner(*connection_, connection_->window(), selection_, connection_->serverTime());
  connection_->flush();
  if (!owns()) fatalError("the peer could not take the selection");
}

void PeerOwner::giveUp() {
  xcb_set_selection_owner(*connection_, XCB_WINDOW_NONE, selection_, connection_->serverTime());
  connection_->flush();
}

bool PeerOwner::owns() {
  const auto cookie = xcb_get_selection_owner(*connection_, selection_);
  const XcbReply<xcb_get_selection_owner_reply_t> owner{xcb_get_selection_owner_reply(*connection_, cookie, nullptr)};
  return owner && owner->owner == connection_->window();
}

void PeerOwner::offer(const std::string& target, Data data, const std::string& type, std::uint8_t format) {
  offered_.push_back(target);
  const auto shared = std::make_shared<const Data>(std::move(data));
  answer(target, [this, shared, type = type.empty() ? target : type, format](const Request& request) {
    reply(request, *shared, type, format);
  });
}

void PeerOwner::offerInPieces(const std::string& target, Data data, std::size_t pieceSize, std::size_t stopAfter,
                              std::uint32_t announced) {
  offered_.push_back(target);
  const auto shared = std::make_shared<const Data>(std::move(data));
  answer(target, [=, this](const Request& request) {
    transfers_[{request.requestor, request.property}] =
        Transfer{.type = request.target,
                 .data = shared,
                 .pieceSize = pieceSize,
                 .piecesLeft = stopAfter,
                 .events = connection_->select(request.requestor, XCB_EVENT_MASK_PROPERTY_CHANGE)};
    xcb_change_property(*connection_, XCB_PROP_MODE_REPLACE, request.requestor, request.property,
                        connection_->atom("INCR"), 32, 1, &announced);
    notify(request, request.property);
  });
}

void PeerOwner::reply(const Request& request, const Data& data, const std::string& type, std::uint8_t format) {
  xcb_change_property(*connection_, XCB_PROP_MODE_REPLACE, request.requestor, request.property, connection_->atom(type),
                      format, static_cast<std::uint32_t>(data.size() / (format / 8)), data.data());
  notify(request, request.property);
}

void PeerOwner::refuse(const Request& request) {
  notify(request, XCB_ATOM_NONE);
}

void PeerOwner::notify(const Request& request, xcb_atom_t property) {
  connection_->sendEvent(request.requestor, XCB_EVENT_MASK_NO_EVENT,
                         xcb_selection_notify_event_t{.response_type = XCB_SELECTION_NOTIFY,
                                                      .pad0 = 0,
                                                      .sequence = 0,
                                                      .time = request.time,
                                                      .requestor = request.requestor,
                                                      .selection = request.selection,
                                                      .target = request.target,
                                                      .property = property});
  connection_->flush();
}

void PeerOwner::cutTransfersShort() {
  for (const auto& [key, transfer] : transfers_) {
    xcb_change_property(*connection_, XCB_PROP_MODE_REPLACE, key.first, key.second, transfer.type, 8, 0, nullptr);
  }
  transfers_.clear();
  connection_->flush();
}

void PeerOwner::die() {
  transfers_.clear();
  events_.cancel();
  connection_.reset();
}

void PeerOwner::handle(const xcb_generic_event_t& event) {
  const auto type = Connection::typeOf(event);
  if (type == XCB_SELECTION_REQUEST) {
    handleRequest(Connection::as<xcb_selection_request_event_t>(event));
  } else if (type == XCB_SELECTION_CLEAR) {
    wasCleared_ = true;
  } else if (type == XCB_PROPERTY_NOTIFY) {
    const auto& notify = Connection::as<xcb_property_notify_event_t>(event);
    if (notify.state == XCB_PROPERTY_DELETE) sendPiece(notify);
  }
}

void PeerOwner::handleRequest(const Request& request) {
  if (request.selection != selection_) return;
  const auto name = connection_->atomName(request.target);
  requests_.push_back(name);
  const auto known = answers_.find(name);
  if (known != answers_.end()) {
    const auto answerNow = known->second;  // it may end this program's connection
    answerNow(request);
  } else if (name == "TARGETS") {
    sendTargets(request);
  } else {
    refuse(request);
  }
}

void PeerOwner::sendTargets(const Request& request) {
  std::vector<xcb_atom_t> atoms;
  for (const auto& name : listed_.empty() ? offered_ : listed_) atoms.push_back(connection_->atom(name));
  reply(request, Data{reinterpret_cast<const char*>(atoms.data()), atoms.size() * sizeof(xcb_atom_t)}, "ATOM", 32);
}

void PeerOwner::sendPiece(const xcb_property_notify_event_t& taken) {
  const auto at = transfers_.find({taken.window, taken.atom});
  if (at == transfers_.end() || at->second.piecesLeft == 0) return;
  auto& transfer = at->second;
  const auto size = std::min(transfer.pieceSize, transfer.data->size() - transfer.offset);
  xcb_change_property(*connection_, XCB_PROP_MODE_REPLACE, taken.window, taken.atom, transfer.type, 8,
                      static_cast<std::uint32_t>(size), transfer.data->data() + transfer.offset);
  connection_->flush();
  transfer.offset += size;
  --transfer.piecesLeft;
  ++piecesSent_;
  if (size == 0) transfers_.erase(at);
}

}  // namespace tavelle::x11::tests
