#include "platform/linux/x11/SelectionOwner.h"

#include "platform/linux/x11/PropertyValues.h"
#include "platform/linux/x11/Targets.h"

#include <algorithm>
#include <vector>

namespace tavelle::x11 {
namespace {

// More pairs than any program asks for in one request.
constexpr std::uint32_t mostPairs = 4096;

const std::shared_ptr<const Data>& hintValue() {
  static const auto value = std::make_shared<const Data>(passwordManagerHintSecret);
  return value;
}

}  // namespace

SelectionOwner::SelectionOwner(Connection& connection, MainActor& actor, xcb_atom_t selection, PasteDebt& debt)
    : connection_(connection),
      selection_(selection),
      targets_(connection.atom("TARGETS")),
      multiple_(connection.atom("MULTIPLE")),
      timestamp_(connection.atom("TIMESTAMP")),
      saveTargets_(connection.atom("SAVE_TARGETS")),
      hint_(connection.atom(targetPasswordManagerHint)),
      debt_(debt),
      transfers_(connection, actor),
      events_(connection.events().subscribe([this](const xcb_generic_event_t& event) { handle(event); })),
      lost_(connection.lost().subscribe([this] { lose(); })) {}

bool SelectionOwner::claim() {
  const bool owned = owns();
  contents_ = nullptr;
  given_.clear();
  // A program that claims the selection between our asking for the time and our claim is later than we are: once more
  // then.
  for (int attempt = 0; attempt < 2 && !owns(); ++attempt) {
    const auto time = connection_.serverTime();
    claimRequest_ = xcb_set_selection_owner(connection_, connection_.window(), selection_, time).sequence;
    if (connection_.ownerOf(selection_) != connection_.window()) continue;
    contents_ = std::make_shared<ClipboardContents>();
    claimTime_ = time;
    if (!owned) ownershipTime_ = time;
  }
  if (owned && !owns()) noteLoss();
  return owns();
}

void SelectionOwner::offer(xcb_atom_t target, SelectionValue value) {
  contents_->set(target, std::move(value));
  std::erase_if(given_, [&](const auto& given) { return given.second == target; });
}

bool SelectionOwner::hasGivenEverythingTo(xcb_window_t window) const {
  const auto client = connection_.clientOf(window);
  return owns() && !transfers_.isBusy() && std::ranges::all_of(contents_->entries(), [&](const auto& entry) {
           return given_.contains({client, entry.target});
         });
}

void SelectionOwner::handle(const xcb_generic_event_t& event) {
  if (Connection::typeOf(event) == XCB_SELECTION_REQUEST) {
    const auto& request = Connection::as<xcb_selection_request_event_t>(event);
    if (request.selection == selection_ && request.owner == connection_.window()) handleRequest(request);
  } else if (Connection::typeOf(event) == XCB_SELECTION_CLEAR) {
    handleClear(event);
  }
}

void SelectionOwner::handleClear(const xcb_generic_event_t& event) {
  const auto& clear = Connection::as<xcb_selection_clear_event_t>(event);
  if (clear.selection != selection_ || clear.owner != connection_.window()) return;
  if (!Connection::isAfter(event, claimRequest_)) return;  // lost, but claimed again since
  lose();
}

void SelectionOwner::lose() {
  if (!owns()) return;
  contents_ = nullptr;
  noteLoss();
}

void SelectionOwner::noteLoss() {
  debt_.cancel();
  lostOwnership_.send();
}

void SelectionOwner::handleRequest(const xcb_selection_request_event_t& request) {
  // Clients from before ICCCM name no property: the target's name serves.
  const auto property = request.property != XCB_ATOM_NONE ? request.property : request.target;
  bool isConverted = false;
  if (owns() && !isFromBeforeOwnership(request.time)) {
    isConverted = request.target == multiple_ ? convertMultiple(request.requestor, request.property)
                                              : convert(request.requestor, request.target, property);
  }
  notify(request, isConverted ? property : static_cast<xcb_atom_t>(XCB_ATOM_NONE));
}

bool SelectionOwner::isFromBeforeOwnership(xcb_timestamp_t time) const {
  if (time == XCB_CURRENT_TIME) return false;
  return static_cast<std::int32_t>(time - ownershipTime_) < 0;  // the server's clock comes round every 49.7 days
}

bool SelectionOwner::convert(xcb_window_t requestor, xcb_atom_t target, xcb_atom_t property) {
  if (property == XCB_ATOM_NONE) return false;
  const auto owed = debt_.owedTo(requestor);
  const ClipboardContents& contents = owed ? *owed : *contents_;
  if (target == targets_) {
    sendTargets(requestor, property, contents);
    return true;
  }
  if (target == timestamp_) {
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, requestor, property, XCB_ATOM_INTEGER, 32, 1, &claimTime_);
    return true;
  }
  const auto value = valueOf(target, contents);
  if (!value) return false;
  transfers_.send(requestor, property, *value);
  if (owed) {
    debt_.noteServed();
  } else {
    given_.emplace(connection_.clientOf(requestor), target);
  }
  return true;
}

// The property lists pairs of target and property; a pair that cannot be served loses its property.
bool SelectionOwner::convertMultiple(xcb_window_t requestor, xcb_atom_t property) {
  if (property == XCB_ATOM_NONE) return false;
  const auto cookie =
      xcb_get_property(connection_, 0, requestor, property, XCB_GET_PROPERTY_TYPE_ANY, 0, mostPairs * 2);
  const XcbReply<xcb_get_property_reply_t> reply{xcb_get_property_reply(connection_, cookie, nullptr)};
  if (!reply) return false;
  auto atoms = itemsIn(reply->format, bytesOf(*reply));
  if (atoms.size() < 2) return false;
  for (std::size_t at = 0; at + 1 < atoms.size(); at += 2) {
    const auto target = atoms[at];
    auto& destination = atoms[at + 1];
    if (target == multiple_ || !convert(requestor, target, destination)) destination = XCB_ATOM_NONE;
  }
  xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, requestor, property, connection_.atom("ATOM_PAIR"), 32,
                      static_cast<std::uint32_t>(atoms.size() & ~std::size_t{1}), atoms.data());
  return true;
}

void SelectionOwner::sendTargets(xcb_window_t requestor, xcb_atom_t property, const ClipboardContents& contents) {
  std::vector<xcb_atom_t> targets{targets_, timestamp_, multiple_, saveTargets_};
  for (const auto& entry : contents.entries()) targets.push_back(entry.target);
  if (contents.isPassing() && !contents.find(hint_)) targets.push_back(hint_);
  xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, requestor, property, XCB_ATOM_ATOM, 32,
                      static_cast<std::uint32_t>(targets.size()), targets.data());
}

std::optional<SelectionValue> SelectionOwner::valueOf(xcb_atom_t target, const ClipboardContents& contents) const {
  if (const auto* const value = contents.find(target)) return *value;
  if (target == hint_ && contents.isPassing()) return SelectionValue{hint_, 8, hintValue()};
  return std::nullopt;
}

void SelectionOwner::notify(const xcb_selection_request_event_t& request, xcb_atom_t property) {
  connection_.sendEvent(request.requestor, XCB_EVENT_MASK_NO_EVENT,
                        xcb_selection_notify_event_t{.response_type = XCB_SELECTION_NOTIFY,
                                                     .pad0 = 0,
                                                     .sequence = 0,
                                                     .time = request.time,
                                                     .requestor = request.requestor,
                                                     .selection = request.selection,
                                                     .target = request.target,
                                                     .property = property});
}

}  // namespace tavelle::x11
