#include "platform/linux/GDBus.h"

#include <memory>

namespace tavelle::dbus {
namespace {

// GLib keeps a callback's context as a pointer and tells when it is done with it.
template <typename T>
gpointer boxed(T value) {
  return std::make_unique<T>(std::move(value)).release();
}
template <typename T>
void freeBox(gpointer box) {
  std::default_delete<T>{}(static_cast<T*>(box));
}

struct Watcher {
  std::function<void()> appeared;
  std::function<void()> vanished;
};

void onMethodCall(GDBusConnection*, const char*, const char*, const char*, const char* method, GVariant* arguments,
                  GDBusMethodInvocation* invocation, gpointer box) {
  GErrorPtr error;
  GVariant* const result = static_cast<Object*>(box)->call(method, arguments, Out{error});
  if (error) {
    g_dbus_method_invocation_return_gerror(invocation, error.get());
  } else {
    g_dbus_method_invocation_return_value(invocation, result);
  }
}

GVariant* onGetProperty(GDBusConnection*, const char*, const char*, const char*, const char* property, GError**,
                        gpointer box) {
  return static_cast<Object*>(box)->property(property);
}

using Emitted = std::function<void(GVariant*)>;

void onSignal(GDBusConnection*, const char*, const char*, const char*, const char*, GVariant* arguments, gpointer box) {
  (*static_cast<Emitted*>(box))(arguments);
}

std::shared_ptr<GDBusConnection> shared(GDBusConnection* connection) {
  return {G_DBUS_CONNECTION(g_object_ref(connection)), g_object_unref};
}

constexpr struct {
  const char* name;
  const char* path;
} bus = {"org.freedesktop.DBus", "/org/freedesktop/DBus"};

constexpr GDBusInterfaceVTable objectTable = {onMethodCall, onGetProperty, nullptr, {}};

void onReply(GObject* connection, GAsyncResult* result, gpointer box) {
  const std::unique_ptr<Reply> reply{static_cast<Reply*>(box)};
  GErrorPtr error;
  GVariantPtr value{g_dbus_connection_call_finish(G_DBUS_CONNECTION(connection), result, Out{error})};
  (*reply)(std::move(value), error.get());
}

}  // namespace

Registration exportObject(GDBusConnection* connection, const char* path, const char* introspectionXML, Object object) {
  const std::unique_ptr<GDBusNodeInfo, decltype(&g_dbus_node_info_unref)> node{
      g_dbus_node_info_new_for_xml(introspectionXML, nullptr), g_dbus_node_info_unref};
  const gpointer box = boxed(std::move(object));
  const guint id = g_dbus_connection_register_object(connection, path, node->interfaces[0], &objectTable, box,
                                                     freeBox<Object>, nullptr);
  if (id == 0) {
    freeBox<Object>(box);
    return {};
  }
  return Registration{[kept = shared(connection), id] { g_dbus_connection_unregister_object(kept.get(), id); }};
}

// GIO's own name owning would wait for the bus when it gives the name up.
Registration ownName(GDBusConnection* connection, const std::string& name) {
  constexpr guint32 doNotQueue = 4;
  call(connection, {bus.name, bus.path, bus.name, "RequestName"}, g_variant_new("(su)", name.c_str(), doNotQueue),
       nullptr);
  return Registration{[kept = shared(connection), name] { releaseName(kept.get(), name.c_str()); }};
}

void releaseName(GDBusConnection* connection, const char* name) {
  call(connection, {bus.name, bus.path, bus.name, "ReleaseName"}, g_variant_new("(s)", name), nullptr);
}

Registration watchName(GDBusConnection* connection, const char* name, std::function<void()> appeared,
                       std::function<void()> vanished) {
  const auto onAppeared = [](GDBusConnection*, const char*, const char*, gpointer box) {
    static_cast<Watcher*>(box)->appeared();
  };
  const auto onVanished = [](GDBusConnection*, const char*, gpointer box) { static_cast<Watcher*>(box)->vanished(); };
  const guint id =
      g_bus_watch_name_on_connection(connection, name, G_BUS_NAME_WATCHER_FLAGS_NONE, onAppeared, onVanished,
                                     boxed(Watcher{std::move(appeared), std::move(vanished)}), freeBox<Watcher>);
  return Registration{[id] { g_bus_unwatch_name(id); }};
}

void call(GDBusConnection* connection, const Method& method, GVariant* arguments, Reply reply) {
  constexpr int usualTimeout = -1;
  const GAsyncReadyCallback callback =
      reply ? onReply : nullptr;  // without one, the bus is told that no reply is wanted
  const gpointer box = reply ? boxed(std::move(reply)) : nullptr;
  g_dbus_connection_call(connection, method.destination, method.path, method.interface, method.name, arguments, nullptr,
                         G_DBUS_CALL_FLAGS_NONE, usualTimeout, nullptr, callback, box);
}

Registration subscribe(GDBusConnection* connection, const Signal& signal, std::function<void(GVariant*)> emitted) {
  const guint id = g_dbus_connection_signal_subscribe(connection, signal.sender, signal.interface, signal.name,
                                                      signal.path, nullptr, G_DBUS_SIGNAL_FLAGS_NONE, onSignal,
                                                      boxed(std::move(emitted)), freeBox<Emitted>);
  return Registration{[kept = shared(connection), id] { g_dbus_connection_signal_unsubscribe(kept.get(), id); }};
}

void emit(GDBusConnection* connection, const char* path, const char* interface, const char* signal,
          GVariant* arguments) {
  g_dbus_connection_emit_signal(connection, nullptr, path, interface, signal, arguments, nullptr);
}

}  // namespace tavelle::dbus
