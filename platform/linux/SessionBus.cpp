#include "platform/linux/SessionBus.h"

#include <cstdio>
#include <utility>

namespace tavelle {
namespace {

void tellThatItHasGone(GDBusConnection*, gboolean, GError*, gpointer) {
  std::fputs(
      "Tavelle: the session bus has gone: until Tavelle is started again there are no notifications, no icon in the "
      "panel and no API keys\n",
      stderr);
}

}  // namespace

SessionBus::SessionBus(GObjectPtr<GDBusConnection> connection) : isKnown_(true), connection_(std::move(connection)) {}

void SessionBus::adopt(GDBusConnection* connection) {
  if (std::exchange(isKnown_, true) && connection == connection_.get()) return;
  connection_.reset(connection ? G_DBUS_CONNECTION(g_object_ref(connection)) : nullptr);
  // GIO would end the process with the bus, and with it the hotkeys and the clipboard's contents, which need no bus.
  if (!connection) return;
  g_dbus_connection_set_exit_on_close(connection, false);
  g_signal_connect(connection, "closed", G_CALLBACK(tellThatItHasGone), nullptr);
}

GDBusConnection* SessionBus::connection() {
  if (!isKnown_) {
    const GObjectPtr<GDBusConnection> connection{g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr)};
    adopt(connection.get());
  }
  return connection_.get();
}

}  // namespace tavelle
