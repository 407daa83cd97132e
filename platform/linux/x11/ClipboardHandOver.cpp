#include "platform/linux/x11/ClipboardHandOver.h"

#include <utility>
#include <vector>

namespace tavelle::x11 {

ClipboardHandOver::ClipboardHandOver(Connection& connection, MainActor& actor, SelectionOwner& owner)
    : connection_(connection),
      actor_(actor),
      owner_(owner),
      managerSelection_(connection.atom("CLIPBOARD_MANAGER")),
      deadline_(actor, [this] { finish(owner_.hasGivenEverythingTo(manager())); }) {}

void ClipboardHandOver::begin(std::function<void(bool isSafe)> done) {
  if (!hasContents() || manager() == XCB_WINDOW_NONE) {
    actor_.post([done = std::move(done), isSafe = !hasContents()] { done(isSafe); });
    return;
  }
  done_ = std::move(done);
  events_ = connection_.events().subscribe([this](const xcb_generic_event_t& event) { handle(event); });
  // Some managers never say that they are done; that the clipboard is theirs says it as well.
  lost_ = owner_.lost().subscribe([this] { finish(true); });
  deadline_.set(limit);
  ask();
}

xcb_window_t ClipboardHandOver::manager() const {
  return connection_.ownerOf(managerSelection_);
}

void ClipboardHandOver::ask() {
  const auto property = connection_.atom("TAVELLE_SAVE_TARGETS");
  std::vector<xcb_atom_t> targets;
  for (const auto& entry : owner_.contents()->entries()) targets.push_back(entry.target);
  xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, connection_.window(), property, XCB_ATOM_ATOM, 32,
                      static_cast<std::uint32_t>(targets.size()), targets.data());
  xcb_convert_selection(connection_, connection_.window(), managerSelection_, connection_.atom("SAVE_TARGETS"),
                        property, connection_.serverTime());
  connection_.flush();
}

void ClipboardHandOver::handle(const xcb_generic_event_t& event) {
  if (Connection::typeOf(event) != XCB_SELECTION_NOTIFY) return;
  const auto& notify = Connection::as<xcb_selection_notify_event_t>(event);
  if (notify.requestor != connection_.window() || notify.selection != managerSelection_) return;
  finish(notify.property != XCB_ATOM_NONE);
}

void ClipboardHandOver::finish(bool isSafe) {
  events_.cancel();
  lost_.cancel();
  deadline_.clear();
  if (const auto done = std::exchange(done_, nullptr)) done(isSafe || !hasContents());
}

}  // namespace tavelle::x11
