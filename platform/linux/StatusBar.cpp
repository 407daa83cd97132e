#include "platform/linux/StatusBar.h"

#include "platform/linux/StatusNotifierInterfaces.h"

#include <unistd.h>

#include <array>
#include <cstdio>
#include <utility>

namespace tavelle {
namespace {

constexpr const char* itemPath = "/StatusNotifierItem";
constexpr const char* menuPath = "/MenuBar";
constexpr const char* itemInterface = "org.kde.StatusNotifierItem";
constexpr const char* watcherName = "org.kde.StatusNotifierWatcher";

// A panel cannot colour a pixmap: a grey that can be read on light panels and on dark ones.
constexpr char grey = '\x80';

std::string makeBusName() {
  static int number = 0;
  return std::string{itemInterface} + "-" + std::to_string(getpid()) + "-" + std::to_string(++number);
}

void tellThatThereIsNoBus() {
  std::fputs("Tavelle: there is no session bus: neither notifications nor an icon in the panel are shown\n", stderr);
}

GVariant* noPixmaps() {
  return g_variant_new_parsed("@a(iiay) []");
}

// ARGB, 32 bits in network byte order, not premultiplied.
GVariant* pixmap(const LinuxImage::Mask& mask) {
  std::string pixels;
  pixels.reserve(mask.alpha.size() * 4);
  for (const char alpha : mask.alpha) pixels.append({alpha, grey, grey, grey});
  GVariant* const bytes = g_variant_new_fixed_array(G_VARIANT_TYPE_BYTE, pixels.data(), pixels.size(), 1);
  return g_variant_new("(ii@ay)", mask.size, mask.size, bytes);
}

}  // namespace

DBusStatusItem::DBusStatusItem(SessionBus& bus, MainActor& mainActor, Subject<>& withdrawal) {
  GDBusConnection* const connection = bus.connection();
  if (!connection) {
    tellThatThereIsNoBus();
    return;
  }
  dbus::Object object = {[](std::string_view, GVariant*, GError**) -> GVariant* { return nullptr; },
                         [this](std::string_view name) { return property(name); }};
  exported_ = dbus::exportObject(connection, itemPath, statusNotifierItemXML, std::move(object));
  if (!exported_) return;  // the bus connection has its one item already

  connection_.reset(G_DBUS_CONNECTION(g_object_ref(connection)));
  menu_ = std::make_unique<DBusMenu>(connection, menuPath, mainActor);
  busName_ = makeBusName();
  name_ = dbus::ownName(connection, busName_);
  watcher_ = dbus::watchName(
      connection, watcherName, [this] { registerWithWatcher(); }, [this] { tellThatThereIsNoPanel(); });
  withdrawal_ = withdrawal.subscribe([this] { withdraw(); });
}

void DBusStatusItem::setButtonImage(std::shared_ptr<Image> image) {
  image_ = std::dynamic_pointer_cast<const LinuxImage>(image);
  if (!connection_) return;
  dbus::emit(connection_.get(), itemPath, itemInterface, "NewIconThemePath",
             g_variant_new("(s)", iconFolder().c_str()));
  dbus::emit(connection_.get(), itemPath, itemInterface, "NewIcon", nullptr);
}

void DBusStatusItem::setMenu(Menu menu) {
  if (menu_) menu_->setItems(std::move(menu));
}

GVariant* DBusStatusItem::property(std::string_view name) const {
  if (name == "Category") return g_variant_new_string("ApplicationStatus");
  if (name == "Id") return g_variant_new_string("tavelle");
  if (name == "Title") return g_variant_new_string("Tavelle");
  if (name == "Status") return g_variant_new_string("Active");
  if (name == "WindowId") return g_variant_new_uint32(0);
  if (name == "IconName") return g_variant_new_string(image_ ? image_->iconName().c_str() : "");
  if (name == "IconThemePath") return g_variant_new_string(iconFolder().c_str());
  if (name == "IconPixmap") return pixmaps();
  if (name == "OverlayIconPixmap" || name == "AttentionIconPixmap") return noPixmaps();
  if (name == "ToolTip") return g_variant_new("(s@a(iiay)ss)", "", noPixmaps(), "Tavelle", "");
  if (name == "ItemIsMenu") return g_variant_new_boolean(true);  // as in a menu bar: a click opens the menu
  if (name == "Menu") return g_variant_new_object_path(menuPath);
  return g_variant_new_string("");  // the names of the overlay and attention icons: there are none
}

// A path need not be text, but on the bus it must.
std::string DBusStatusItem::iconFolder() const {
  if (!image_ || !g_utf8_validate(image_->folder().c_str(), -1, nullptr)) return {};
  return image_->folder().string();
}

GVariant* DBusStatusItem::pixmaps() const {
  if (!image_) return noPixmaps();
  GVariantBuilder builder;
  g_variant_builder_init(&builder, G_VARIANT_TYPE("a(iiay)"));
  for (const auto& mask : image_->masks()) g_variant_builder_add_value(&builder, pixmap(mask));
  return g_variant_builder_end(&builder);
}

// Whoever looks for the icon in vain and starts the program in a terminal, or reads its journal, learns why.
void DBusStatusItem::tellThatThereIsNoPanel() {
  if (std::exchange(isAbsenceTold_, true)) return;
  std::fputs("Tavelle: there is no panel yet that shows icons; starting Tavelle once more opens its settings\n",
             stderr);
}

void DBusStatusItem::registerWithWatcher() const {
  dbus::call(connection_.get(), {watcherName, "/StatusNotifierWatcher", watcherName, "RegisterStatusNotifierItem"},
             g_variant_new("(s)", busName_.c_str()), nullptr);
}

void DBusStatusItem::withdraw() {
  watcher_ = {};
  name_ = {};
  menu_.reset();
  exported_ = {};
  connection_.reset();
}

std::unique_ptr<StatusItem> DBusStatusBar::statusItemWithLength(double) {
  return std::make_unique<DBusStatusItem>(bus_, mainActor_, withdrawal_);
}

}  // namespace tavelle
