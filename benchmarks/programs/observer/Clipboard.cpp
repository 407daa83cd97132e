#include "Clipboard.h"

#include "benchmarks/programs/shared/Clock.h"

#include <poll.h>

#include <algorithm>
#include <cstring>
#include <limits>

namespace tavelle::bench {
namespace {

// As much as GTK and Qt hand over at once.
constexpr std::size_t largestPiece = 256 * 1024 - 100;
constexpr std::int64_t patience = 20'000'000'000;

template <typename Event>
const Event& as(const xcb_generic_event_t& event) {
  return reinterpret_cast<const Event&>(event);
}

std::uint8_t typeOf(const xcb_generic_event_t& event) {
  return event.response_type & 0x7f;
}

}  // namespace

Clipboard::Clipboard(const Display& display)
    : display_(display),
      clipboard_(display.atom("CLIPBOARD")),
      targets_(display.atom("TARGETS")),
      incr_(display.atom("INCR")),
      place_(display.atom("TAVELLE_BENCH_DATA")) {}

void Clipboard::own(Contents contents) {
  contents_ = std::move(contents);
  types_.clear();
  transfers_.clear();
  for (const auto& [type, bytes] : contents_) types_.push_back(display_.atom(type));
  xcb_set_selection_owner(display_, display_.window(), clipboard_, XCB_CURRENT_TIME);
  display_.sync();
}

std::size_t Clipboard::size() const {
  std::size_t size = 0;
  for (const auto& [type, bytes] : contents_) size += bytes.size();
  return size;
}

void Clipboard::handle(const xcb_generic_event_t& event) {
  if (typeOf(event) == XCB_SELECTION_REQUEST) {
    answer(as<xcb_selection_request_event_t>(event));
  } else if (typeOf(event) == XCB_PROPERTY_NOTIFY) {
    const auto& change = as<xcb_property_notify_event_t>(event);
    if (change.state == XCB_PROPERTY_DELETE) sendPiece(change.window, change.atom);
  }
}

void Clipboard::answer(const xcb_selection_request_event_t& request) {
  const auto property = request.property ? request.property : request.target;
  xcb_selection_notify_event_t notify{};
  notify.response_type = XCB_SELECTION_NOTIFY;
  notify.time = request.time;
  notify.requestor = request.requestor;
  notify.selection = request.selection;
  notify.target = request.target;
  notify.property = offer(request.requestor, property, request.target) ? property : xcb_atom_t{XCB_ATOM_NONE};
  xcb_send_event(display_, 0, request.requestor, 0, reinterpret_cast<const char*>(&notify));
  display_.flush();
}

bool Clipboard::offer(xcb_window_t requestor, xcb_atom_t property, xcb_atom_t target) {
  if (target == targets_) {
    auto all = types_;
    all.insert(all.begin(), targets_);
    xcb_change_property(display_, XCB_PROP_MODE_REPLACE, requestor, property, XCB_ATOM_ATOM, 32,
                        static_cast<std::uint32_t>(all.size()), all.data());
    return true;
  }
  const auto at = std::ranges::find(types_, target);
  if (at == types_.end()) return false;
  const std::string& bytes = contents_[static_cast<std::size_t>(at - types_.begin())].second;
  const auto size = static_cast<std::uint32_t>(bytes.size());
  if (bytes.size() <= largestPiece) {
    xcb_change_property(display_, XCB_PROP_MODE_REPLACE, requestor, property, target, 8, size, bytes.data());
    return true;
  }
  const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
  xcb_change_window_attributes(display_, requestor, XCB_CW_EVENT_MASK, &events);
  xcb_change_property(display_, XCB_PROP_MODE_REPLACE, requestor, property, incr_, 32, 1, &size);
  transfers_[{requestor, property}] = {&bytes, target, 0};
  return true;
}

void Clipboard::sendPiece(xcb_window_t requestor, xcb_atom_t property) {
  const auto at = transfers_.find({requestor, property});
  if (at == transfers_.end()) return;
  auto& transfer = at->second;
  const auto size = std::min(largestPiece, transfer.bytes->size() - transfer.offset);
  xcb_change_property(display_, XCB_PROP_MODE_REPLACE, requestor, property, transfer.type, 8,
                      static_cast<std::uint32_t>(size), transfer.bytes->data() + transfer.offset);
  display_.flush();
  transfer.offset += size;
  if (size == 0) transfers_.erase(at);
}

Clipboard::Loss Clipboard::compare(const Serve& serve) const {
  const std::string list = read(targets_, serve);
  std::vector<xcb_atom_t> found(list.size() / sizeof(xcb_atom_t));
  if (!found.empty()) std::memcpy(found.data(), list.data(), found.size() * sizeof(xcb_atom_t));
  std::erase_if(found, [this](auto type) { return !std::ranges::count(types_, type); });

  Loss loss;
  for (std::size_t i = 0; i < types_.size(); ++i) {
    const bool isInPlace = i < found.size() && found[i] == types_[i];
    if (isInPlace && read(types_[i], serve) == contents_[i].second) continue;
    ++loss.types;
    loss.bytes += contents_[i].second.size();
  }
  return loss;
}

bool Clipboard::waitFor(std::uint8_t type, const std::function<bool(const xcb_generic_event_t&)>& isIt,
                        const Serve& serve) const {
  display_.flush();
  const auto end = now() + patience;
  while (now() < end) {
    while (const XcbReply<xcb_generic_event_t> event{xcb_poll_for_event(display_)}) {
      if (typeOf(*event) == type && isIt(*event)) return true;
      serve(*event);
    }
    pollfd input{xcb_get_file_descriptor(display_), POLLIN, 0};
    poll(&input, 1, 100);
  }
  return false;
}

std::string Clipboard::read(xcb_atom_t target, const Serve& serve) const {
  xcb_convert_selection(display_, display_.window(), clipboard_, target, place_, XCB_CURRENT_TIME);
  xcb_atom_t property = XCB_ATOM_NONE;
  const auto isAnswer = [&](const xcb_generic_event_t& event) {
    property = as<xcb_selection_notify_event_t>(event).property;
    return as<xcb_selection_notify_event_t>(event).target == target;
  };
  if (!waitFor(XCB_SELECTION_NOTIFY, isAnswer, serve) || property == XCB_ATOM_NONE) return {};
  xcb_atom_t type = XCB_ATOM_NONE;
  std::string bytes = takeProperty(&type);
  return type == incr_ ? readPieces(serve) : bytes;
}

std::string Clipboard::readPieces(const Serve& serve) const {
  const auto isPiece = [this](const xcb_generic_event_t& event) {
    const auto& change = as<xcb_property_notify_event_t>(event);
    return change.window == display_.window() && change.atom == place_ && change.state == XCB_PROPERTY_NEW_VALUE;
  };
  std::string all;
  xcb_atom_t type = XCB_ATOM_NONE;
  while (waitFor(XCB_PROPERTY_NOTIFY, isPiece, serve)) {
    const std::string piece = takeProperty(&type);
    if (type == XCB_ATOM_NONE || type == incr_) continue;  // told of the property that has been taken already
    if (piece.empty()) return all;
    all += piece;
  }
  return {};
}

std::string Clipboard::takeProperty(xcb_atom_t* type) const {
  constexpr auto everything = std::numeric_limits<std::uint32_t>::max() / 4;
  const auto cookie = xcb_get_property(display_, 1, display_.window(), place_, XCB_ATOM_ANY, 0, everything);
  const XcbReply<xcb_get_property_reply_t> reply{xcb_get_property_reply(display_, cookie, nullptr)};
  if (!reply) return {};
  if (type) *type = reply->type;
  return {static_cast<const char*>(xcb_get_property_value(reply.get())),
          static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
}

}  // namespace tavelle::bench
