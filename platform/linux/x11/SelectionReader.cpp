#include "platform/linux/x11/SelectionReader.h"

#include "platform/linux/x11/PropertyValues.h"

#include <xcb/xfixes.h>

#include <algorithm>
#include <string>
#include <utility>

namespace tavelle::x11 {
namespace {

// How much of a property one request fetches: the loop waits for the server meanwhile.
constexpr std::uint32_t wordsOfOneFetch = 1u << 20;

// An owner's word on the size of what it is going to send is trusted this far.
constexpr std::size_t largestReservation = std::size_t{64} << 20;

constexpr std::uint32_t ownerChangeMask = XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE;

}  // namespace

SelectionReader::SelectionReader(Connection& connection, MainActor& actor, xcb_atom_t selection)
    : connection_(connection),
      selection_(selection),
      incr_(connection.atom("INCR")),
      deadline_(actor, [this] { giveUpOverdue(); }),
      events_(connection.events().subscribe([this](const xcb_generic_event_t& event) { handle(event); })),
      lost_(connection.lost().subscribe([this] { failAll(); })) {
  const auto* const xfixes = connection_.extension(xcb_xfixes_id);
  if (!xfixes) return;
  const auto cookie = xcb_xfixes_query_version(connection_, XCB_XFIXES_MAJOR_VERSION, XCB_XFIXES_MINOR_VERSION);
  const XcbReply<xcb_xfixes_query_version_reply_t> version{
      xcb_xfixes_query_version_reply(connection_, cookie, nullptr)};
  if (!version) return;
  ownerChangeEvent_ = static_cast<std::uint8_t>(xfixes->first_event + XCB_XFIXES_SELECTION_NOTIFY);
  xcb_xfixes_select_selection_input(connection_, connection_.window(), selection_, ownerChangeMask);
}

void SelectionReader::startSeries() {
  isOwnerSilent_ = hasOwnerAnswered_ = false;
  seriesTime_.reset();
}

Task<std::optional<SelectionAnswer>> SelectionReader::read(xcb_atom_t target) {
  if (isOwnerSilent_ || connection_.isLost()) co_return std::nullopt;
  const Arrival<Result> arrival = begin(target);
  Arrival<Result>::Awaiter awaiter{arrival};
  Result result = co_await awaiter;
  co_return result;
}

Arrival<SelectionReader::Result> SelectionReader::begin(xcb_atom_t target) {
  // One time for a series: an owner that comes in between is entitled to refuse what was meant for its predecessor.
  if (!seriesTime_ || ownerChangeEvent_ == 0) seriesTime_ = connection_.serverTime();
  const auto property = takeProperty();
  const auto request =
      xcb_convert_selection(connection_, connection_.window(), selection_, target, property, *seriesTime_);
  connection_.flush();
  auto& conversion = conversions_[property];
  conversion.target = target;
  conversion.time = *seriesTime_;
  conversion.request = request.sequence;
  conversion.begun = conversion.lastProgress = Clock::now();
  setDeadline();
  return conversion.arrival;
}

xcb_atom_t SelectionReader::takeProperty() {
  if (freeProperties_.empty()) {
    freeProperties_.push_back(connection_.atom("TAVELLE_SELECTION_" + std::to_string(propertiesMade_++)));
  }
  const auto property = freeProperties_.back();
  freeProperties_.pop_back();
  return property;
}

void SelectionReader::handle(const xcb_generic_event_t& event) {
  const auto type = Connection::typeOf(event);
  if (type == XCB_SELECTION_NOTIFY) {
    handleNotify(Connection::as<xcb_selection_notify_event_t>(event));
  } else if (type == XCB_PROPERTY_NOTIFY) {
    handleProperty(Connection::as<xcb_property_notify_event_t>(event));
  } else if (type == ownerChangeEvent_ && ownerChangeEvent_ != 0) {
    handleOwnerChange(event);
  }
}

void SelectionReader::handleNotify(const xcb_selection_notify_event_t& event) {
  if (event.requestor != connection_.window() || event.selection != selection_) return;
  if (event.property == XCB_ATOM_NONE) return handleRefusal(event);
  const auto at = conversions_.find(event.property);
  if (at == conversions_.end()) return handleLateAnswer(event.property);
  if (!at->second.isAnswered) readAnswer(at);
}

void SelectionReader::handleRefusal(const xcb_selection_notify_event_t& event) {
  const auto at = std::ranges::find_if(conversions_, [&](const auto& entry) {
    const auto& conversion = entry.second;
    // Some owners do not bother to repeat the time.
    const bool isItsTime = conversion.time == event.time || event.time == XCB_CURRENT_TIME;
    return !conversion.isAnswered && conversion.target == event.target && isItsTime;
  });
  if (at == conversions_.end()) {
    isOwnerSilent_ = false;  // late, but alive
  } else {
    finish(at, std::nullopt);
  }
}

void SelectionReader::handleProperty(const xcb_property_notify_event_t& event) {
  if (event.window != connection_.window() || event.state != XCB_PROPERTY_NEW_VALUE) return;
  const auto at = conversions_.find(event.atom);
  if (at == conversions_.end()) return handleLateAnswer(event.atom);
  if (at->second.isAnswered) readPiece(at);
}

void SelectionReader::handleLateAnswer(xcb_atom_t property) {
  if (!retiredProperties_.contains(property)) return;
  // Taken away unread: the server need not keep it, and an owner that sends in pieces comes to its end.
  xcb_delete_property(connection_, connection_.window(), property);
  isOwnerSilent_ = false;
}

void SelectionReader::handleOwnerChange(const xcb_generic_event_t& event) {
  const auto& notify = Connection::as<xcb_xfixes_selection_notify_event_t>(event);
  if (notify.selection != selection_) return;
  startSeries();
  const bool hasDied = notify.subtype != XCB_XFIXES_SELECTION_EVENT_SET_SELECTION_OWNER;
  std::vector<Arrival<Result>> orphans;
  for (auto at = conversions_.begin(); at != conversions_.end();) {
    auto& [property, conversion] = *at;
    const bool wentToThePredecessor = Connection::isAfter(event, conversion.request);
    conversion.ownerChanged = conversion.ownerChanged || wentToThePredecessor;
    if (hasDied && wentToThePredecessor) {
      orphans.push_back(conversion.arrival);
      retiredProperties_.insert(property);
      at = conversions_.erase(at);
    } else {
      ++at;
    }
  }
  for (auto& orphan : orphans) orphan.come(std::nullopt);
}

void SelectionReader::readAnswer(Conversions::iterator at) {
  auto& [property, conversion] = *at;
  conversion.isAnswered = true;
  conversion.lastProgress = Clock::now();
  auto& answer = conversion.answer;
  const auto piece = moveProperty(property, answer.data);
  if (!piece) return finish(at, std::nullopt);
  if (piece->type != incr_) {
    answer.type = piece->type;
    answer.format = piece->format;
    return finish(at, std::move(answer));
  }
  // The value is a lower bound of the size. That the property went tells the owner to begin.
  conversion.announcedSize = announcedSizeIn(answer.data);
  answer.isIncremental = true;
  answer.data.clear();
  answer.data.reserve(std::min(conversion.announcedSize, largestReservation));
  connection_.flush();
}

void SelectionReader::readPiece(Conversions::iterator at) {
  auto& [property, conversion] = *at;
  auto& answer = conversion.answer;
  const auto piece = moveProperty(property, answer.data);
  if (!piece) return;  // read already, with the piece before
  conversion.lastProgress = Clock::now();
  if (answer.type == XCB_ATOM_NONE) {
    answer.type = piece->type;
    answer.format = piece->format;
  }
  if (answer.data.size() > sizeLimit) return abandon(at);
  if (piece->size > 0) return connection_.flush();
  // An owner that lost the selection may have ended its transfer before its end.
  const bool isTorn =
      conversion.ownerChanged && answer.data.size() < std::max<std::size_t>(conversion.announcedSize, 1);
  finish(at, isTorn ? Result{} : Result{std::move(answer)});
}

// Appends the property's value to `into` and removes the property. No value where there is no such property.
std::optional<SelectionReader::Piece> SelectionReader::moveProperty(xcb_atom_t property, Data& into) {
  Piece piece{XCB_ATOM_NONE, 8, 0};
  std::uint32_t offset = 0;
  std::uint32_t remaining = 0;
  do {
    // The server removes the property with the request that reaches its end.
    const auto cookie = xcb_get_property(connection_, 1, connection_.window(), property, XCB_GET_PROPERTY_TYPE_ANY,
                                         offset, wordsOfOneFetch);
    const XcbReply<xcb_get_property_reply_t> reply{xcb_get_property_reply(connection_, cookie, nullptr)};
    if (!reply || reply->type == XCB_ATOM_NONE) return std::nullopt;
    const auto bytes = bytesOf(*reply);
    remaining = reply->bytes_after;
    if (offset == 0 && remaining > 0) into.reserve(into.size() + bytes.size() + remaining);
    into.append(bytes);
    piece.type = reply->type;
    piece.format = reply->format;
    piece.size += bytes.size();
    offset += wordsOfOneFetch;
  } while (remaining > 0 && into.size() <= sizeLimit);
  return piece;
}

void SelectionReader::finish(Conversions::iterator at, Result result) {
  auto arrival = at->second.arrival;
  hasOwnerAnswered_ = true;
  freeProperties_.push_back(at->first);
  conversions_.erase(at);
  setDeadline();
  arrival.come(std::move(result));
}

// The piece at hand is left where it is, so that an endless sender waits for us instead of keeping us busy.
void SelectionReader::abandon(Conversions::iterator at) {
  auto arrival = at->second.arrival;
  conversions_.erase(at);
  setDeadline();
  arrival.come(std::nullopt);
}

void SelectionReader::giveUpOverdue() {
  const auto now = Clock::now();
  std::vector<Arrival<Result>> overdue;
  for (auto at = conversions_.begin(); at != conversions_.end();) {
    const auto& [property, conversion] = *at;
    if (dueTime(conversion) > now) {
      ++at;
      continue;
    }
    if (!conversion.ownerChanged) isOwnerSilent_ = !std::exchange(hasOwnerAnswered_, false);
    overdue.push_back(conversion.arrival);
    if (now < conversion.begun + readLimit) retiredProperties_.insert(property);
    at = conversions_.erase(at);
  }
  seriesTime_.reset();  // a refusal that comes late is told by its time
  setDeadline();
  for (auto& arrival : overdue) arrival.come(std::nullopt);
}

void SelectionReader::failAll() {
  deadline_.clear();
  for (auto& [property, conversion] : std::exchange(conversions_, {})) conversion.arrival.come(std::nullopt);
}

SelectionReader::Clock::time_point SelectionReader::dueTime(const Conversion& conversion) const {
  return std::min(conversion.lastProgress + silenceLimit, conversion.begun + readLimit);
}

void SelectionReader::setDeadline() {
  if (conversions_.empty()) return deadline_.clear();
  auto next = Clock::time_point::max();
  for (const auto& [property, conversion] : conversions_) next = std::min(next, dueTime(conversion));
  deadline_.set(std::chrono::ceil<std::chrono::milliseconds>(next - Clock::now()));
}

}  // namespace tavelle::x11
