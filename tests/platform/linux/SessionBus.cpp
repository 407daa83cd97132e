#include "tests/platform/linux/SessionBus.h"

#include "platform/FatalError.h"
#include "tests/platform/linux/MainLoop.h"

#include <utility>

namespace tavelle::tests {

PrivateBus::PrivateBus() : address_("unix:path=" + (folder_.path() / "bus").string()) {
  const auto configuration = folder_.path() / "bus.conf";
  write(configuration, "<busconfig><type>session</type><keep_umask/><listen>" + address_ +
                           "</listen><auth>EXTERNAL</auth><servicedir>" + folder_.path().string() +
                           "</servicedir><policy context=\"default\"><allow send_destination=\"*\" eavesdrop=\"true\"/>"
                           "<allow eavesdrop=\"true\"/><allow own=\"*\"/></policy></busconfig>");
  daemon_ = std::make_unique<Program>(std::vector<std::string>{
      "dbus-daemon", "--nofork", "--nopidfile", "--print-address", "--config-file=" + configuration.string()});
  if (!daemon_->hasWritten("unix:")) fatalError("the test's session bus did not start:\n" + daemon_->output());
}

PrivateBus::~PrivateBus() = default;

void PrivateBus::end() {
  daemon_.reset();
}

GObjectPtr<GDBusConnection> PrivateBus::connect() const {
  GErrorPtr error;
  const auto flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                       G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
  GObjectPtr<GDBusConnection> connection{
      g_dbus_connection_new_for_address_sync(address_.c_str(), flags, nullptr, nullptr, Out{error})};
  if (!connection) fatalError(error->message);
  return connection;
}

void PrivateBus::addService(const std::string& name, const std::string& command) {
  write(folder_.path() / (name + ".service"), "[D-BUS Service]\nName=" + name + "\nExec=" + command + "\n");
  const auto peer = connect();
  callAndWait(peer.get(), {"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "ReloadConfig"});
}

GVariantPtr callAndWait(GDBusConnection* connection, const dbus::Method& method, GVariant* arguments) {
  const auto reply = std::make_shared<std::pair<bool, GVariantPtr>>();
  dbus::call(connection, method, arguments, [reply](GVariantPtr result, const GError*) {
    *reply = {true, std::move(result)};
  });
  if (!waitUntil([&] { return reply->first; })) fatalError(std::string{"no answer to "} + method.name);
  return std::move(reply->second);
}

std::string textOf(GVariant* value) {
  if (!value) return "nothing";
  const GPtr<> text{g_variant_print(value, false)};
  return text.get();
}

}  // namespace tavelle::tests
