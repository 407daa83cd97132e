#include "platform/linux/DBusMenu.h"

#include "platform/linux/StatusNotifierInterfaces.h"

#include <gio/gio.h>

#include <memory>
#include <utility>

namespace tavelle {
namespace {

constexpr const char* interface = "com.canonical.dbusmenu";
constexpr int root = 0;

// Walks an array: `GVariantIter` lives as long as this, and refers to nothing of its own.
GVariantIter iterate(GVariant* array) {
  GVariantIter iterator;
  g_variant_iter_init(&iterator, array);
  return iterator;
}

GVariantPtr child(GVariant* tuple, gsize index) {
  return GVariantPtr{g_variant_get_child_value(tuple, index)};
}

std::set<std::string, std::less<>> namesIn(GVariant* array) {
  std::set<std::string, std::less<>> names;
  auto iterator = iterate(array);
  const char* name = nullptr;
  while (g_variant_iter_next(&iterator, "&s", &name)) names.emplace(name);
  return names;
}

// A lone underscore marks the key that picks the item.
std::string label(const std::string& title) {
  std::string escaped;
  for (const char c : title) escaped.append(c == '_' ? 2 : 1, c);
  return escaped;
}

// Panels take key names, not characters, where a key has one.
std::string keyName(const std::string& keyEquivalent) {
  static const std::map<std::string, std::string, std::less<>> names = {
      {",", "comma"}, {".", "period"}, {"+", "plus"}, {"-", "minus"}, {"/", "slash"}, {" ", "space"}};
  const auto found = names.find(keyEquivalent);
  return found == names.end() ? keyEquivalent : found->second;
}

// Command is Control in the menus of these desktops.
GVariant* shortcut(const std::string& keyEquivalent) {
  const std::string key = keyName(keyEquivalent);
  const char* const keys[] = {"Control", key.c_str()};
  GVariant* const combination = g_variant_new_strv(keys, 2);
  return g_variant_new_array(G_VARIANT_TYPE_STRING_ARRAY, &combination, 1);
}

GVariant* unknownItem(int item, GError** error) {
  g_set_error(error, G_DBUS_ERROR, G_DBUS_ERROR_INVALID_ARGS, "The menu has no item %d", item);
  return nullptr;
}

}  // namespace

DBusMenu::DBusMenu(GDBusConnection* connection, const char* path, MainActor& mainActor)
    : connection_(connection), path_(path), mainActor_(mainActor) {
  const auto property = [](std::string_view name) -> GVariant* {
    if (name == "Version") return g_variant_new_uint32(3);
    if (name == "TextDirection") return g_variant_new_string("ltr");
    if (name == "Status") return g_variant_new_string("normal");
    return g_variant_new_strv(nullptr, 0);  // IconThemePath
  };
  exported_ = dbus::exportObject(
      connection, path, dbusMenuXML,
      {[this](std::string_view method, GVariant* arguments, GError** error) { return call(method, arguments, error); },
       property});
}

void DBusMenu::setItems(Menu items) {
  items_.clear();
  for (auto& item : items) items_.emplace(nextID_++, std::move(item));
  ++revision_;
  dbus::emit(connection_, path_, interface, "LayoutUpdated", g_variant_new("(ui)", revision_, root));
}

GVariant* DBusMenu::call(std::string_view method, GVariant* arguments, GError** error) {
  if (method == "GetLayout") return getLayout(arguments, error);
  if (method == "GetGroupProperties") return getGroupProperties(arguments);
  if (method == "GetProperty") return getProperty(arguments, error);
  if (method == "Event") return event(arguments, error);
  if (method == "EventGroup") return eventGroup(arguments);
  if (method == "AboutToShow") return g_variant_new("(b)", false);  // the menu is always up to date
  return g_variant_new_parsed("(@ai [], @ai [])");                  // AboutToShowGroup
}

GVariant* DBusMenu::getLayout(GVariant* arguments, GError** error) const {
  int parent = 0;
  int depth = 0;
  g_variant_get(arguments, "(iias)", &parent, &depth, nullptr);
  if (!has(parent)) return unknownItem(parent, error);
  const auto wanted = namesIn(child(arguments, 2).get());
  return g_variant_new("(u@(ia{sv}av))", revision_, layout(parent, depth, wanted));
}

GVariant* DBusMenu::getGroupProperties(GVariant* arguments) const {
  const auto wanted = namesIn(child(arguments, 1).get());
  GVariantBuilder builder;
  g_variant_builder_init(&builder, G_VARIANT_TYPE("a(ia{sv})"));
  const auto add = [&](ItemID item) { g_variant_builder_add(&builder, "(i@a{sv})", item, properties(item, wanted)); };
  const auto ids = child(arguments, 0);
  if (g_variant_n_children(ids.get()) == 0) {
    add(root);
    for (const auto& [item, entry] : items_) add(item);
  }
  auto iterator = iterate(ids.get());
  for (ItemID item = 0; g_variant_iter_next(&iterator, "i", &item);) {
    if (has(item)) add(item);
  }
  return g_variant_new("(a(ia{sv}))", &builder);
}

GVariant* DBusMenu::getProperty(GVariant* arguments, GError** error) const {
  int item = 0;
  const char* name = nullptr;
  g_variant_get(arguments, "(i&s)", &item, &name);
  if (!has(item)) return unknownItem(item, error);
  const GVariantPtr all{g_variant_ref_sink(properties(item, {}))};
  const GVariantPtr value{g_variant_lookup_value(all.get(), name, nullptr)};
  if (value) return g_variant_new("(v)", value.get());
  g_set_error(error, G_DBUS_ERROR, G_DBUS_ERROR_INVALID_ARGS, "Item %d has no property \"%s\"", item, name);
  return nullptr;
}

GVariant* DBusMenu::event(GVariant* arguments, GError** error) {
  int item = 0;
  const char* name = nullptr;
  g_variant_get(arguments, "(i&svu)", &item, &name, nullptr, nullptr);
  return handleEvent(item, name) ? nullptr : unknownItem(item, error);
}

GVariant* DBusMenu::eventGroup(GVariant* arguments) {
  GVariantBuilder unknown;
  g_variant_builder_init(&unknown, G_VARIANT_TYPE("ai"));
  const auto events = child(arguments, 0);
  auto iterator = iterate(events.get());
  int item = 0;
  const char* name = nullptr;
  while (g_variant_iter_next(&iterator, "(i&svu)", &item, &name, nullptr, nullptr)) {
    if (!handleEvent(item, name)) g_variant_builder_add(&unknown, "i", item);
  }
  return g_variant_new("(ai)", &unknown);
}

bool DBusMenu::handleEvent(ItemID item, std::string_view name) {
  const auto found = items_.find(item);
  if (found == items_.end()) return item == root;
  // Later: the action may replace or destroy the menu, and the panel waits for its answer.
  if (name == "clicked" && found->second.action) mainActor_.post(found->second.action);
  return true;
}

bool DBusMenu::has(ItemID item) const {
  return item == root || items_.contains(item);
}

GVariant* DBusMenu::properties(ItemID item, const Names& wanted) const {
  GVariantBuilder builder;
  g_variant_builder_init(&builder, G_VARIANT_TYPE_VARDICT);
  const auto add = [&](const char* name, GVariant* value) {
    const GVariantPtr owned{g_variant_ref_sink(value)};
    if (wanted.empty() || wanted.contains(name)) g_variant_builder_add(&builder, "{sv}", name, owned.get());
  };
  if (item == root) {
    add("children-display", g_variant_new_string("submenu"));
  } else if (const auto& entry = items_.at(item); entry.isSeparator()) {
    add("type", g_variant_new_string("separator"));
  } else {
    add("label", g_variant_new_string(label(entry.title).c_str()));
    add("enabled", g_variant_new_boolean(entry.action != nullptr));
    add("visible", g_variant_new_boolean(true));
    if (!entry.keyEquivalent.empty()) add("shortcut", shortcut(entry.keyEquivalent));
  }
  return g_variant_builder_end(&builder);
}

GVariant* DBusMenu::layout(ItemID item, int depth, const Names& wanted) const {
  GVariantBuilder children;
  g_variant_builder_init(&children, G_VARIANT_TYPE("av"));
  if (item == root && depth != 0) {
    for (const auto& [id, entry] : items_) g_variant_builder_add(&children, "v", layout(id, depth - 1, wanted));
  }
  return g_variant_new("(i@a{sv}av)", item, properties(item, wanted), &children);
}

}  // namespace tavelle
