#include "platform/linux/SecretServiceClient.h"

#include <array>
#include <cstring>
#include <memory>

namespace tavelle {
namespace {

constexpr const char* servicePath = "/org/freedesktop/secrets";
constexpr const char* serviceInterface = "org.freedesktop.Secret.Service";
constexpr const char* collectionInterface = "org.freedesktop.Secret.Collection";
constexpr const char* itemInterface = "org.freedesktop.Secret.Item";

// The kind of item, for programs that list a keyring. Items are found without it: a person may have stored the key by
// hand.
constexpr const char* itemKind = "app.tavelle.Secret";

struct SecretValueUnref {
  void operator()(SecretValue* value) const { secret_value_unref(value); }
};
using SecretValuePtr = std::unique_ptr<SecretValue, SecretValueUnref>;

// Writes with a floating reference, as arguments of a call want it.
GVariant* attributes(const KeychainItemQuery& query, bool withKind) {
  GVariantBuilder builder;
  g_variant_builder_init(&builder, G_VARIANT_TYPE("a{ss}"));
  g_variant_builder_add(&builder, "{ss}", "service", query.service.c_str());
  g_variant_builder_add(&builder, "{ss}", "account", query.account.c_str());
  if (withKind) g_variant_builder_add(&builder, "{ss}", "xdg:schema", itemKind);
  return g_variant_builder_end(&builder);
}

std::vector<std::string> objectPaths(GVariant* tuple, gsize index) {
  const GVariantPtr list{g_variant_get_child_value(tuple, index)};
  std::vector<std::string> paths;
  for (gsize at = 0; at < g_variant_n_children(list.get()); ++at) {
    const GVariantPtr path{g_variant_get_child_value(list.get(), at)};
    paths.emplace_back(g_variant_get_string(path.get(), nullptr));
  }
  return paths;
}

// "/" is how the service says "none".
std::string objectPath(GVariant* tuple, gsize index) {
  const GVariantPtr path{g_variant_get_child_value(tuple, index)};
  const std::string text = g_variant_get_string(path.get(), nullptr);
  return text == "/" ? std::string{} : text;
}

OSStatus statusOf(const GError* error) {
  const GPtr<> name{g_dbus_error_get_remote_error(error)};
  if (!name) return errSecNotAvailable;
  if (std::strcmp(name.get(), "org.freedesktop.Secret.Error.IsLocked") == 0) return errSecInteractionNotAllowed;
  if (std::strcmp(name.get(), "org.freedesktop.Secret.Error.NoSuchObject") == 0) return errSecItemNotFound;
  return errSecNotAvailable;
}

// The connection that the process has; libsecret knows no other. Once closed, it stays so.
GObjectPtr<GDBusConnection> connectToBus(BoundedCalls& calls) {
  const auto result = calls.wait([](GCancellable* cancellable, GAsyncReadyCallback callback, gpointer data) {
    g_bus_get(G_BUS_TYPE_SESSION, cancellable, callback, data);
  });
  GObjectPtr<GDBusConnection> connection{result ? g_bus_get_finish(result.get(), nullptr) : nullptr};
  if (!connection || g_dbus_connection_is_closed(connection.get())) throw SecretServiceError{errSecNotAvailable};
  g_dbus_connection_set_exit_on_close(connection.get(), false);  // GIO would end the process with the bus
  return connection;
}

}  // namespace

GObjectPtr<SecretService> SecretServiceClient::open(BoundedCalls& calls) {
  const auto connection = connectToBus(calls);
  const auto result = calls.wait([](GCancellable* cancellable, GAsyncReadyCallback callback, gpointer data) {
    secret_service_open(SECRET_TYPE_SERVICE, nullptr, SECRET_SERVICE_OPEN_SESSION, cancellable, callback, data);
  });
  if (!result) throw SecretServiceError{errSecNotAvailable};
  GErrorPtr error;
  GObjectPtr<SecretService> service{secret_service_open_finish(result.get(), Out{error})};
  if (!service) throw SecretServiceError{statusOf(error.get())};
  return service;
}

GVariantPtr SecretServiceClient::call(const ObjectPath& object, const char* interface, const char* method,
                                      GVariant* arguments, const char* replyType) {
  auto* proxy = G_DBUS_PROXY(service_);
  auto* connection = g_dbus_proxy_get_connection(proxy);
  const auto result = calls_.wait([&](GCancellable* cancellable, GAsyncReadyCallback callback, gpointer data) {
    g_dbus_connection_call(connection, g_dbus_proxy_get_name(proxy), object.c_str(), interface, method, arguments,
                           G_VARIANT_TYPE(replyType), G_DBUS_CALL_FLAGS_NONE, -1, cancellable, callback, data);
  });
  if (!result) throw SecretServiceError{errSecNotAvailable};
  GErrorPtr error;
  GVariantPtr reply{g_dbus_connection_call_finish(connection, result.get(), Out{error})};
  if (!reply) throw SecretServiceError{statusOf(error.get())};
  return reply;
}

SecretItems SecretServiceClient::search(const KeychainItemQuery& query) {
  const auto reply =
      call(servicePath, serviceInterface, "SearchItems", g_variant_new("(@a{ss})", attributes(query, false)), "(aoao)");
  return {objectPaths(reply.get(), 0), objectPaths(reply.get(), 1)};
}

bool SecretServiceClient::isFound(const ObjectPath& item, const KeychainItemQuery& query) {
  const auto attributes = property(item, itemInterface, "Attributes", G_VARIANT_TYPE("a{ss}"));
  const auto has = [&](const char* name, const std::string& value) {
    const char* found = nullptr;
    return g_variant_lookup(attributes.get(), name, "&s", &found) && value == found;
  };
  return attributes && has("service", query.service) && has("account", query.account);
}

Data SecretServiceClient::secret(const ObjectPath& item) {
  const auto reply = call(item, itemInterface, "GetSecret",
                          g_variant_new("(o)", secret_service_get_session_dbus_path(service_)), "((oayays))");
  const GVariantPtr encrypted{g_variant_get_child_value(reply.get(), 0)};
  const SecretValuePtr value{secret_service_decode_dbus_secret(service_, encrypted.get())};
  if (!value) throw SecretServiceError{errSecIO};
  gsize size = 0;
  const char* bytes = secret_value_get(value.get(), &size);
  return {bytes, size};
}

void SecretServiceClient::setSecret(const ObjectPath& item, const Data& value) {
  call(item, itemInterface, "SetSecret", g_variant_new("(@(oayays))", encrypted(value)), "()");
}

GVariant* SecretServiceClient::encrypted(const Data& value) {
  const SecretValuePtr plain{secret_value_new(value.data(), static_cast<gssize>(value.size()), "text/plain")};
  return secret_service_encode_dbus_secret(service_, plain.get());
}

SecretServiceClient::ObjectPath SecretServiceClient::defaultCollection() {
  const auto reply = call(servicePath, serviceInterface, "ReadAlias", g_variant_new("(s)", "default"), "(o)");
  return objectPath(reply.get(), 0);
}

bool SecretServiceClient::isLocked(const ObjectPath& collection) {
  const auto isLocked = property(collection, collectionInterface, "Locked", G_VARIANT_TYPE_BOOLEAN);
  return isLocked && g_variant_get_boolean(isLocked.get());
}

GVariantPtr SecretServiceClient::property(const ObjectPath& object, const char* interface, const char* name,
                                          const GVariantType* type) {
  const auto reply =
      call(object, "org.freedesktop.DBus.Properties", "Get", g_variant_new("(ss)", interface, name), "(v)");
  const GVariantPtr boxed{g_variant_get_child_value(reply.get(), 0)};
  GVariantPtr value{g_variant_get_variant(boxed.get())};
  return g_variant_is_of_type(value.get(), type) ? std::move(value) : nullptr;
}

SecretServiceClient::Outcome SecretServiceClient::createDefaultCollection() {
  auto* arguments = g_variant_new_parsed("({'org.freedesktop.Secret.Collection.Label': <'Login'>}, 'default')");
  const auto reply = call(servicePath, serviceInterface, "CreateCollection", arguments, "(oo)");
  return {objectPath(reply.get(), 0), objectPath(reply.get(), 1)};
}

SecretServiceClient::Outcome SecretServiceClient::createItem(const ObjectPath& collection,
                                                             const KeychainItemQuery& item, const Data& value) {
  const std::string label = "Tavelle: " + item.account;
  GVariantBuilder properties;
  g_variant_builder_init(&properties, G_VARIANT_TYPE("a{sv}"));
  g_variant_builder_add(&properties, "{sv}", "org.freedesktop.Secret.Item.Label", g_variant_new_string(label.c_str()));
  g_variant_builder_add(&properties, "{sv}", "org.freedesktop.Secret.Item.Attributes", attributes(item, true));

  auto* arguments = g_variant_new("(a{sv}@(oayays)b)", &properties, encrypted(value), true);
  const auto reply = call(collection, collectionInterface, "CreateItem", arguments, "(oo)");
  return {objectPath(reply.get(), 0), objectPath(reply.get(), 1)};
}

SecretServiceClient::Outcome SecretServiceClient::deleteItem(const ObjectPath& item) {
  const auto reply = call(item, itemInterface, "Delete", nullptr, "(o)");
  return {{}, objectPath(reply.get(), 0)};
}

SecretServiceClient::Outcome SecretServiceClient::unlock(const std::vector<ObjectPath>& objects) {
  GVariantBuilder paths;
  g_variant_builder_init(&paths, G_VARIANT_TYPE("ao"));
  for (const auto& object : objects) g_variant_builder_add(&paths, "o", object.c_str());
  const auto reply = call(servicePath, serviceInterface, "Unlock", g_variant_new("(ao)", &paths), "(aoo)");
  return {{}, objectPath(reply.get(), 1)};
}

}  // namespace tavelle
