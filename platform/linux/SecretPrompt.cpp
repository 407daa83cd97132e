#include "platform/linux/SecretPrompt.h"

namespace tavelle {
namespace {

constexpr const char* promptInterface = "org.freedesktop.Secret.Prompt";
constexpr std::chrono::minutes longestLife{5};

}  // namespace

SecretPrompt::SecretPrompt(GDBusConnection* connection, const char* service, const std::string& path)
    : connection_(G_DBUS_CONNECTION(g_object_ref(connection))),
      service_(service),
      subscription_(g_dbus_connection_signal_subscribe(connection, service, promptInterface, "Completed", path.c_str(),
                                                       nullptr, G_DBUS_SIGNAL_FLAGS_NONE, &SecretPrompt::onCompleted,
                                                       this, nullptr)),
      askedAt_(std::chrono::steady_clock::now()) {
  constexpr const char* noWindow = "";
  g_dbus_connection_call(connection, service, path.c_str(), promptInterface, "Prompt", g_variant_new("(s)", noWindow),
                         nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr, nullptr);
}

SecretPrompt::~SecretPrompt() {
  g_dbus_connection_signal_unsubscribe(connection_.get(), subscription_);
}

bool SecretPrompt::isOpen() const {
  return !isCompleted_ && std::chrono::steady_clock::now() - askedAt_ < longestLife;
}

void SecretPrompt::onCompleted(GDBusConnection*, const char*, const char*, const char*, const char*, GVariant* outcome,
                               gpointer data) {
  auto* self = static_cast<SecretPrompt*>(data);
  gboolean isDismissed = true;
  if (g_variant_is_of_type(outcome, G_VARIANT_TYPE("(bv)"))) g_variant_get(outcome, "(bv)", &isDismissed, nullptr);
  self->isDismissed_ = isDismissed;
  self->isCompleted_ = true;
}

}  // namespace tavelle
