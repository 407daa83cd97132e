#pragma once

#include "concurrency/MainActor.h"
#include "platform/StatusBar.h"
#include "platform/linux/GDBus.h"

#include <map>
#include <set>

namespace tavelle {

// A menu that a panel draws: com.canonical.dbusmenu. Panels differ in how they ask for it: all at once or level by
// level, with or without the properties, item by item or in groups.
class DBusMenu {
 public:
  DBusMenu(GDBusConnection* connection, const char* path, MainActor& mainActor);

  void setItems(Menu items);

 private:
  using ItemID = int;
  // Which properties a panel wants to see; none named means all.
  using Names = std::set<std::string, std::less<>>;

  GVariant* call(std::string_view method, GVariant* arguments, GError** error);
  GVariant* getLayout(GVariant* arguments, GError** error) const;
  GVariant* getGroupProperties(GVariant* arguments) const;
  GVariant* getProperty(GVariant* arguments, GError** error) const;
  GVariant* event(GVariant* arguments, GError** error);
  GVariant* eventGroup(GVariant* arguments);
  bool handleEvent(ItemID item, std::string_view name);

  bool has(ItemID item) const;
  GVariant* properties(ItemID item, const Names& wanted) const;
  GVariant* layout(ItemID item, int depth, const Names& wanted) const;

  GDBusConnection* connection_;
  const char* path_;
  MainActor& mainActor_;
  std::map<ItemID, MenuItem> items_;
  ItemID nextID_ = 1;  // never used again: a click on a menu that has been replaced must not hit another item
  guint revision_ = 1;
  dbus::Registration exported_;
};

}  // namespace tavelle
