#include "platform/linux/SecretPrompt.h"

namespace tavelle {
namespace {

constexpr const char* promptInterface = "org.freedesktop.Secret.Prompt";
constexpr std::chrono::minutes longestLife{5};

}  // namespace

SecretPrompt::SecretPrompt(GDBusConnection* connection, const char* service, const std::string& path)
    : service_(service),
      completed_(dbus::subscribe(connection, {service, path.c_str(), promptInterface, "Completed"},
                                 [this](GVariant* outcome) { onCompleted(outcome); })),
      askedAt_(std::chrono::steady_clock::now()),
      asking_(g_cancellable_new()) {
  constexpr const char* noWindow = "";
  g_dbus_connection_call(connection, service, path.c_str(), promptInterface, "Prompt", g_variant_new("(s)", noWindow),
                         nullptr, G_DBUS_CALL_FLAGS_NONE, -1, asking_.get(), &SecretPrompt::onAsked, this);
}

SecretPrompt::~SecretPrompt() {
  g_cancellable_cancel(asking_.get());
}

bool SecretPrompt::isOpen() const {
  return state_ == State::asked && std::chrono::steady_clock::now() - askedAt_ < longestLife;
}

// A service that cannot ask will not tell of an answer either.
void SecretPrompt::onAsked(GObject* connection, GAsyncResult* result, gpointer data) {
  GErrorPtr error;
  const GVariantPtr reply{g_dbus_connection_call_finish(G_DBUS_CONNECTION(connection), result, Out{error})};
  if (reply || g_error_matches(error.get(), G_IO_ERROR, G_IO_ERROR_CANCELLED)) return;  // cancelled: `data` has gone
  auto* self = static_cast<SecretPrompt*>(data);
  if (self->state_ == State::asked) self->state_ = State::failed;
}

void SecretPrompt::onCompleted(GVariant* outcome) {
  gboolean isDismissed = true;
  if (g_variant_is_of_type(outcome, G_VARIANT_TYPE("(bv)"))) g_variant_get(outcome, "(bv)", &isDismissed, nullptr);
  state_ = isDismissed ? State::refused : State::agreed;
}

}  // namespace tavelle
