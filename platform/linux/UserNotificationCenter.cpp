#include "platform/linux/UserNotificationCenter.h"

#include "platform/linux/Application.h"
#include "platform/linux/NotificationText.h"

#include <cstdio>
#include <utility>

namespace tavelle {
namespace {

constexpr const char* serverName = "org.freedesktop.Notifications";
constexpr const char* serverPath = "/org/freedesktop/Notifications";

// More than any server shows.
constexpr std::size_t longestTitle = 256;
constexpr std::size_t longestBody = 4096;

// What may wait while a server is being started.
constexpr std::size_t mostWaiting = 64;

dbus::Method method(const char* name) {
  return {serverName, serverPath, serverName, name};
}

struct Waiting {
  NotificationContent content;
  std::function<void(bool)> completion;
};

bool names(GVariant* capabilities, const char* capability) {
  const GVariantPtr list{g_variant_get_child_value(capabilities, 0)};
  const GPtr<const char*> strings{g_variant_get_strv(list.get(), nullptr)};
  return g_strv_contains(strings.get(), capability);
}

GVariant* hints(const NotificationContent& content) {
  GVariantBuilder builder;
  g_variant_builder_init(&builder, G_VARIANT_TYPE_VARDICT);
  g_variant_builder_add(&builder, "{sv}", "desktop-entry", g_variant_new_string(applicationID));
  if (content.sound == NotificationSound::systemDefault) {
    g_variant_builder_add(&builder, "{sv}", "sound-name", g_variant_new_string("message-new-instant"));
  } else {
    g_variant_builder_add(&builder, "{sv}", "suppress-sound", g_variant_new_boolean(true));
  }
  return g_variant_builder_end(&builder);
}

// `content` as it can be sent, whatever it was.
NotificationContent presentable(const NotificationContent& content) {
  return {notificationText(content.title, longestTitle), notificationText(content.body, longestBody), content.sound};
}

GVariant* notifyArguments(const NotificationContent& content, bool isBodyMarkup) {
  constexpr guint32 replacesNone = 0;
  constexpr gint32 serversOwnTimeout = -1;
  constexpr const char* noIcon = "";
  const std::string body = isBodyMarkup ? escapedMarkup(content.body) : content.body;  // a title is never markup
  return g_variant_new("(susssas@a{sv}i)", "Tavelle", replacesNone, noIcon, content.title.c_str(), body.c_str(),
                       nullptr, hints(content), serversOwnTimeout);
}

void complete(const std::function<void(bool)>& completion, bool outcome) {
  if (completion) completion(outcome);
}

}  // namespace

class DBusNotificationCenter::Server : public std::enable_shared_from_this<Server> {
 public:
  explicit Server(GDBusConnection* connection) : connection_(G_DBUS_CONNECTION(g_object_ref(connection))) {
    const auto forget = [this] { forgetCapabilities(); };
    watch_ = dbus::watchName(connection, serverName, forget, forget);
  }

  void add(Waiting notification) {
    if (knowledge_ == Knowledge::known) return notify(std::move(notification));
    if (waiting_.size() == mostWaiting) return complete(notification.completion, false);
    waiting_.push_back(std::move(notification));
    if (knowledge_ == Knowledge::none) ask();
  }

 private:
  enum class Knowledge { none, asked, known };

  // Another server has come, or none is left. One that is coming because it is being asked is not another.
  void forgetCapabilities() {
    if (knowledge_ == Knowledge::known) knowledge_ = Knowledge::none;
  }

  void ask() {
    knowledge_ = Knowledge::asked;
    dbus::call(connection_.get(), method("GetCapabilities"), nullptr,
               [weak = weak_from_this()](GVariantPtr capabilities, const GError*) {
                 if (const auto self = weak.lock()) self->learn(capabilities.get());
               });
  }

  // No capabilities: there is no server, or none that can be used.
  void learn(GVariant* capabilities) {
    const bool isServer = capabilities && g_variant_is_of_type(capabilities, G_VARIANT_TYPE("(as)"));
    knowledge_ = isServer ? Knowledge::known : Knowledge::none;
    isBodyMarkup_ = isServer && names(capabilities, "body-markup");
    for (auto& notification : std::exchange(waiting_, {})) {
      if (isServer) {
        notify(std::move(notification));
      } else {
        complete(notification.completion, false);
      }
    }
    if (!isServer) tellThatThereIsNone();
  }

  // Whoever started the program in a terminal, or reads its journal, learns why nothing is seen.
  void tellThatThereIsNone() {
    if (std::exchange(isAbsenceTold_, true)) return;
    std::fputs("Tavelle: there is no notification service on the session bus: notifications are not shown\n", stderr);
  }

  void notify(Waiting notification) {
    dbus::call(
        connection_.get(), method("Notify"), notifyArguments(notification.content, isBodyMarkup_),
        [weak = weak_from_this(), completion = std::move(notification.completion)](GVariantPtr, const GError* error) {
          if (weak.lock()) complete(completion, error == nullptr);
        });
  }

  GObjectPtr<GDBusConnection> connection_;
  Knowledge knowledge_ = Knowledge::none;
  bool isBodyMarkup_ = false;
  bool isAbsenceTold_ = false;
  std::deque<Waiting> waiting_;
  dbus::Registration watch_;
};

DBusNotificationCenter::DBusNotificationCenter(SessionBus& bus) : bus_(bus) {}
DBusNotificationCenter::~DBusNotificationCenter() = default;

void DBusNotificationCenter::requestAuthorization(AuthorizationOptions, std::function<void(bool)> completion) {
  complete(completion, bus_.connection() != nullptr);
}

void DBusNotificationCenter::add(NotificationRequest request, std::function<void(bool)> completion) {
  auto* const connection = bus_.connection();
  if (!connection) return complete(completion, false);
  if (!server_) server_ = std::make_shared<Server>(connection);
  server_->add({presentable(request.content), std::move(completion)});
}

}  // namespace tavelle
