#include "platform/linux/x11/Connection.h"

#include <glib.h>

#include <array>
#include <utility>

namespace tavelle::x11 {

// A GLib source over the connection's file descriptor and over the events that XCB read ahead while it waited for a
// reply.
struct Connection::Source {
  GSource base;
  Connection* connection;

  static Connection& of(GSource* source) { return *reinterpret_cast<Source*>(source)->connection; }

  static gboolean prepare(GSource* source, gint* timeout) {
    *timeout = -1;
    of(source).flush();
    return of(source).hasQueuedEvent();
  }
  static gboolean check(GSource* source) {
    // XCB may have read the event already, in which case the descriptor has nothing to tell.
    return g_source_query_unix_fd(source, fdTag(source)) != 0 || of(source).hasQueuedEvent();
  }
  static gboolean dispatch(GSource* source, GSourceFunc, gpointer) {
    of(source).dispatch();
    return G_SOURCE_CONTINUE;
  }
  static gpointer& fdTag(GSource* source) { return reinterpret_cast<Source*>(source)->tag; }

  gpointer tag;
};

void Connection::DestroySource::operator()(GSource* source) const {
  g_source_destroy(source);
  g_source_unref(source);
}

std::unique_ptr<Connection> Connection::open() {
  int screenNumber = 0;
  xcb_connection_t* const xcb = xcb_connect(nullptr, &screenNumber);
  if (xcb_connection_has_error(xcb)) {
    xcb_disconnect(xcb);
    return nullptr;
  }
  auto screens = xcb_setup_roots_iterator(xcb_get_setup(xcb));
  for (; screenNumber > 0; --screenNumber) xcb_screen_next(&screens);
  return std::unique_ptr<Connection>{new Connection{xcb, screens.data}};
}

Connection::Connection(xcb_connection_t* xcb, const xcb_screen_t* screen)
    : xcb_(xcb), screen_(screen), window_(xcb_generate_id(xcb)), eventMasks_(xcb) {
  xcb_create_window(xcb_, 0, window_, root(), -1, -1, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0,
                    nullptr);
  ownEvents_ = select(window_, XCB_EVENT_MASK_PROPERTY_CHANGE);

  static GSourceFuncs functions = {Source::prepare, Source::check, Source::dispatch, nullptr, nullptr, nullptr};
  GSource* const source = g_source_new(&functions, sizeof(Source));
  auto* const own = reinterpret_cast<Source*>(source);
  own->connection = this;
  own->tag = g_source_add_unix_fd(source, xcb_get_file_descriptor(xcb_), G_IO_IN);
  g_source_set_name(source, "X11");
  g_source_set_can_recurse(source, false);
  g_source_attach(source, nullptr);
  source_.reset(source);
}

// A server that sees a client go reads nothing more of it: the key that the last requests let go would stay down.
Connection::~Connection() {
  source_.reset();
  ownEvents_.cancel();
  const XcbReply<xcb_get_input_focus_reply_t> allIsRead{
      xcb_get_input_focus_reply(xcb_, xcb_get_input_focus(xcb_), nullptr)};
  xcb_disconnect(xcb_);
}

xcb_atom_t Connection::atom(std::string_view name) {
  const std::string key{name};
  if (const auto known = atoms_.find(key); known != atoms_.end()) return known->second;
  const auto cookie = xcb_intern_atom(xcb_, 0, static_cast<std::uint16_t>(name.size()), name.data());
  const XcbReply<xcb_intern_atom_reply_t> reply{xcb_intern_atom_reply(xcb_, cookie, nullptr)};
  const xcb_atom_t atom = reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
  atoms_.emplace(key, atom);
  atomNames_.emplace(atom, key);
  return atom;
}

std::string Connection::atomName(xcb_atom_t atom) {
  const std::array one{atom};
  return atomNames(one).front();
}

std::vector<std::string> Connection::atomNames(std::span<const xcb_atom_t> atoms) {
  std::vector<std::pair<xcb_atom_t, xcb_get_atom_name_cookie_t>> asked;
  for (const auto atom : atoms) {
    if (!atomNames_.contains(atom)) asked.emplace_back(atom, xcb_get_atom_name(xcb_, atom));
  }
  for (const auto& [atom, cookie] : asked) {
    const XcbReply<xcb_get_atom_name_reply_t> reply{xcb_get_atom_name_reply(xcb_, cookie, nullptr)};
    if (!reply) continue;
    std::string name{xcb_get_atom_name_name(reply.get()),
                     static_cast<std::size_t>(xcb_get_atom_name_name_length(reply.get()))};
    atoms_.emplace(name, atom);
    atomNames_.emplace(atom, std::move(name));
  }
  std::vector<std::string> names;
  for (const auto atom : atoms) {
    const auto known = atomNames_.find(atom);
    names.push_back(known != atomNames_.end() ? known->second : std::string{});
  }
  return names;
}

const xcb_query_extension_reply_t* Connection::extension(xcb_extension_t& id) const {
  const auto* const data = xcb_get_extension_data(xcb_, &id);
  return data && data->present ? data : nullptr;
}

std::uint32_t Connection::clientOf(xcb_window_t resource) const {
  return resource & ~xcb_get_setup(xcb_)->resource_id_mask;
}

xcb_window_t Connection::ownerOf(xcb_atom_t selection) const {
  const auto cookie = xcb_get_selection_owner(xcb_, selection);
  const XcbReply<xcb_get_selection_owner_reply_t> reply{xcb_get_selection_owner_reply(xcb_, cookie, nullptr)};
  return reply ? reply->owner : xcb_window_t{XCB_WINDOW_NONE};
}

xcb_timestamp_t Connection::serverTime() {
  const auto property = atom("TAVELLE_TIME");
  const auto request =
      xcb_change_property(xcb_, XCB_PROP_MODE_APPEND, window_, property, XCB_ATOM_INTEGER, 32, 0, nullptr);
  flush();
  while (XcbReply<xcb_generic_event_t> event{xcb_wait_for_event(xcb_)}) {
    if (typeOf(*event) == XCB_PROPERTY_NOTIFY) {
      const auto& notify = as<xcb_property_notify_event_t>(*event);
      if (notify.window == window_ && notify.atom == property) return notify.time;
    }
    if (event->response_type == 0 && event->full_sequence == request.sequence) break;
    queue_.push_back(std::move(event));
  }
  return XCB_CURRENT_TIME;
}

bool Connection::hasQueuedEvent() {
  if (queue_.empty()) {
    if (XcbReply<xcb_generic_event_t> event{xcb_poll_for_queued_event(xcb_)}) queue_.push_back(std::move(event));
  }
  return !queue_.empty();
}

XcbReply<xcb_generic_event_t> Connection::nextEvent() {
  if (queue_.empty()) return XcbReply<xcb_generic_event_t>{xcb_poll_for_event(xcb_)};
  auto event = std::move(queue_.front());
  queue_.pop_front();
  return event;
}

void Connection::dispatch() {
  while (const auto event = nextEvent()) {
    if (event->response_type != 0) events_.send(*event);
  }
  flush();
  if (isLost() && !g_source_is_destroyed(source_.get())) {
    g_source_destroy(source_.get());  // a dead descriptor is always ready: serving it would spin
    lost_.send();
  }
}

}  // namespace tavelle::x11
