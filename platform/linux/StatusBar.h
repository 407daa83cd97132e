#pragma once

#include "concurrency/MainActor.h"
#include "observation/Subject.h"
#include "platform/StatusBar.h"
#include "platform/linux/Bundle.h"
#include "platform/linux/DBusMenu.h"
#include "platform/linux/GDBus.h"
#include "platform/linux/SessionBus.h"

#include <string>

namespace tavelle {

// A StatusNotifierItem: it registers with whichever panel watches for items, each time one appears. Without a bus it is
// an item without a button.
class DBusStatusItem : public StatusItem {
 public:
  DBusStatusItem(SessionBus& bus, MainActor& mainActor, Subject<>& withdrawal);

  bool hasButton() const override { return connection_ != nullptr; }
  void setButtonImage(std::shared_ptr<Image> image) override;
  void setMenu(Menu menu) override;

 private:
  GVariant* property(std::string_view name) const;
  std::string iconFolder() const;
  GVariant* pixmaps() const;
  void registerWithWatcher() const;
  void tellThatThereIsNoPanel();
  void withdraw();

  GObjectPtr<GDBusConnection> connection_;
  std::string busName_;
  std::shared_ptr<const LinuxImage> image_;
  std::unique_ptr<DBusMenu> menu_;
  dbus::Registration exported_;
  dbus::Registration name_;
  dbus::Registration watcher_;
  bool isAbsenceTold_ = false;
  Subscription withdrawal_;
};

class DBusStatusBar : public StatusBar {
 public:
  DBusStatusBar(SessionBus& bus, MainActor& mainActor) : bus_(bus), mainActor_(mainActor) {}

  std::unique_ptr<StatusItem> statusItemWithLength(double length) override;

  // Takes all items out of the panel, for good.
  void withdraw() { withdrawal_.send(); }

 private:
  SessionBus& bus_;
  MainActor& mainActor_;
  Subject<> withdrawal_;
};

}  // namespace tavelle
