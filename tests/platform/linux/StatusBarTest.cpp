#include "platform/linux/StatusBar.h"

#include "platform/linux/MainActor.h"
#include "platform/linux/StatusNotifierInterfaces.h"
#include "tests/platform/contracts/StatusBarContract.h"
#include "tests/platform/linux/MainLoop.h"
#include "tests/platform/linux/SessionBus.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <algorithm>

namespace tavelle::tests {
namespace {

constexpr const char* watcherXML = R"xml(<node><interface name="org.kde.StatusNotifierWatcher">
  <method name="RegisterStatusNotifierItem"><arg type="s" direction="in"/></method>
</interface></node>)xml";

// The part of a panel that items register with.
class Watcher {
 public:
  explicit Watcher(const PrivateBus& bus) : connection_(bus.connect()) {
    const auto take = [this](std::string_view, GVariant* arguments, GError**) -> GVariant* {
      const GVariantPtr name{g_variant_get_child_value(arguments, 0)};
      items.emplace_back(g_variant_get_string(name.get(), nullptr));
      return nullptr;
    };
    object_ = dbus::exportObject(connection_.get(), "/StatusNotifierWatcher", watcherXML, {take, {}});
    name_ = dbus::ownName(connection_.get(), "org.kde.StatusNotifierWatcher");
  }

  std::vector<std::string> items;

 private:
  GObjectPtr<GDBusConnection> connection_;
  dbus::Registration object_;
  dbus::Registration name_;
};

// A panel that shows the menu of this process's item, by its connection's own name.
class PanelOnABus {
 public:
  StatusBar& statusBar() { return bar_; }
  static std::shared_ptr<Image> image() {
    return std::make_shared<LinuxImage>("Icon-symbolic", "/icons", std::vector<LinuxImage::Mask>{});
  }

  std::vector<std::string> shown() {
    std::vector<std::string> entries;
    for (const auto& [number, entry] : layout()) entries.push_back(entry);
    return entries;
  }

  void choose(const std::string& title) {
    const auto entries = layout();
    const auto entry = std::ranges::find(entries, title, &Entry::second);
    ASSERT_NE(entry, entries.end()) << title;
    call("Event", g_variant_new("(isvu)", entry->first, "clicked", g_variant_new_int32(0), 0));
    bool hadItsTurn = false;
    mainActor_.post([&] { hadItsTurn = true; });
    ASSERT_TRUE(waitUntil([&] { return hadItsTurn; }));
  }

 private:
  using Entry = std::pair<gint32, std::string>;

  GVariantPtr call(const char* method, GVariant* arguments) {
    const char* const item = g_dbus_connection_get_unique_name(own_.get());
    return callAndWait(panel_.get(), {item, "/MenuBar", "com.canonical.dbusmenu", method}, arguments);
  }

  // Nothing where no item answers.
  std::vector<Entry> layout() {
    const auto reply = call("GetLayout", g_variant_new_parsed("(0, -1, @as [])"));
    if (!reply) return {};
    const GVariantPtr root{g_variant_get_child_value(reply.get(), 1)};
    const GVariantPtr children{g_variant_get_child_value(root.get(), 2)};
    std::vector<Entry> entries;
    for (std::size_t at = 0; at < g_variant_n_children(children.get()); ++at) {
      const GVariantPtr boxed{g_variant_get_child_value(children.get(), at)};
      const GVariantPtr entry{g_variant_get_variant(boxed.get())};
      entries.push_back(read(entry.get()));
    }
    return entries;
  }

  static Entry read(GVariant* entry) {
    const GVariantPtr number{g_variant_get_child_value(entry, 0)};
    const GVariantPtr properties{g_variant_get_child_value(entry, 1)};
    const char* label = "-";
    gboolean isEnabled = true;
    g_variant_lookup(properties.get(), "label", "&s", &label);
    g_variant_lookup(properties.get(), "enabled", "b", &isEnabled);
    std::string title = label;
    for (std::size_t at = 0; (at = title.find("__", at)) != std::string::npos; ++at) title.erase(at, 1);
    return {g_variant_get_int32(number.get()), title + (isEnabled ? "" : " (disabled)")};
  }

  PrivateBus privateBus_;
  GObjectPtr<GDBusConnection> own_ = privateBus_.connect();
  GObjectPtr<GDBusConnection> panel_ = privateBus_.connect();
  SessionBus bus_{GObjectPtr<GDBusConnection>{G_DBUS_CONNECTION(g_object_ref(own_.get()))}};
  GLibMainActor mainActor_;
  DBusStatusBar bar_{bus_, mainActor_};
};

INSTANTIATE_TYPED_TEST_SUITE_P(OnABus, StatusBarContract, PanelOnABus);

class StatusBarTest : public testing::Test {
 protected:
  GVariantPtr askItem(const std::string& property) {
    return callAndWait(panel_.get(), {item().c_str(), "/StatusNotifierItem", "org.freedesktop.DBus.Properties", "Get"},
                       g_variant_new("(ss)", "org.kde.StatusNotifierItem", property.c_str()));
  }
  GVariantPtr callItem(const char* method, GVariant* arguments) {
    return callAndWait(panel_.get(), {item().c_str(), "/StatusNotifierItem", "org.kde.StatusNotifierItem", method},
                       arguments);
  }
  GVariantPtr callMenu(const char* method, const char* arguments) {
    return callAndWait(panel_.get(), {item().c_str(), "/MenuBar", "com.canonical.dbusmenu", method},
                       g_variant_new_parsed(arguments));
  }
  // The name under which the item can be reached; the panel's connection waits for it.
  std::string item() { return g_dbus_connection_get_unique_name(own_.get()); }

  Menu menu() {
    return {{"Reword Selection", [this] { chosen_ += "reword "; }, ""},
            MenuItem::separator(),
            {"Settings...", [this] { chosen_ += "settings "; }, ","},
            {"Under_score", nullptr, ""},
            {"Quit Tavelle", [this] { chosen_ += "quit "; }, "q"}};
  }

  PrivateBus privateBus_;
  GObjectPtr<GDBusConnection> own_ = privateBus_.connect();
  GObjectPtr<GDBusConnection> panel_ = privateBus_.connect();
  SessionBus bus_{GObjectPtr<GDBusConnection>{G_DBUS_CONNECTION(g_object_ref(own_.get()))}};
  GLibMainActor mainActor_;
  DBusStatusBar bar_{bus_, mainActor_};
  std::string chosen_;
};

TEST_F(StatusBarTest, registersWithAWatcherThatIsThere) {
  Watcher watcher{privateBus_};
  const auto item = bar_.statusItemWithLength(squareStatusItemLength);
  ASSERT_TRUE(waitUntil([&] { return !watcher.items.empty(); }));
  const std::string prefix = "org.kde.StatusNotifierItem-" + std::to_string(getpid()) + "-";
  EXPECT_TRUE(watcher.items[0].starts_with(prefix)) << watcher.items[0];
}

TEST_F(StatusBarTest, registersWithEachWatcherThatComesLater) {
  const auto item = bar_.statusItemWithLength(squareStatusItemLength);
  for (int restarts = 0; restarts < 3; ++restarts) {
    Watcher watcher{privateBus_};
    ASSERT_TRUE(waitUntil([&] { return watcher.items.size() == 1; }));
  }
}

TEST_F(StatusBarTest, answersEveryPropertyThatPanelsRead) {
  const auto item = bar_.statusItemWithLength(squareStatusItemLength);
  const std::pair<const char*, const char*> expected[] = {{"Category", "(<'ApplicationStatus'>,)"},
                                                          {"Id", "(<'tavelle'>,)"},
                                                          {"Title", "(<'Tavelle'>,)"},
                                                          {"Status", "(<'Active'>,)"},
                                                          {"WindowId", "(<uint32 0>,)"},
                                                          {"IconThemePath", "(<''>,)"},
                                                          {"IconName", "(<''>,)"},
                                                          {"IconPixmap", "(<@a(iiay) []>,)"},
                                                          {"OverlayIconName", "(<''>,)"},
                                                          {"OverlayIconPixmap", "(<@a(iiay) []>,)"},
                                                          {"AttentionIconName", "(<''>,)"},
                                                          {"AttentionIconPixmap", "(<@a(iiay) []>,)"},
                                                          {"AttentionMovieName", "(<''>,)"},
                                                          {"ToolTip", "(<('', @a(iiay) [], 'Tavelle', '')>,)"},
                                                          {"ItemIsMenu", "(<true>,)"},
                                                          {"Menu", "(<objectpath '/MenuBar'>,)"}};
  for (const auto& [property, value] : expected) EXPECT_EQ(textOf(askItem(property)), value) << property;
  const auto all = callAndWait(
      panel_.get(), {this->item().c_str(), "/StatusNotifierItem", "org.freedesktop.DBus.Properties", "GetAll"},
      g_variant_new("(s)", "org.kde.StatusNotifierItem"));
  const GVariantPtr dictionary{g_variant_get_child_value(all.get(), 0)};
  EXPECT_EQ(g_variant_n_children(dictionary.get()), std::size(expected));
}

TEST_F(StatusBarTest, showsTheImageByNameAndByPixels) {
  const auto item = bar_.statusItemWithLength(squareStatusItemLength);
  item->setButtonImage(std::make_shared<LinuxImage>(
      "Icon-symbolic", "/icons", std::vector<LinuxImage::Mask>{{2, std::string("\x00\x7f\xff\x01", 4)}}));
  EXPECT_EQ(textOf(askItem("IconName")), "(<'Icon-symbolic'>,)");
  EXPECT_EQ(textOf(askItem("IconThemePath")), "(<'/icons'>,)");
  EXPECT_EQ(textOf(askItem("IconPixmap")),
            "(<[(2, 2, [byte 0x00, 0x80, 0x80, 0x80, 0x7f, 0x80, 0x80, 0x80, 0xff, 0x80, 0x80, 0x80, 0x01, 0x80, 0x80, "
            "0x80])]>,)");
}

TEST_F(StatusBarTest, takesAMissingImage) {
  const auto item = bar_.statusItemWithLength(squareStatusItemLength);
  item->setButtonImage(nullptr);
  EXPECT_EQ(textOf(askItem("IconName")), "(<''>,)");
}

TEST_F(StatusBarTest, showsAFolderWhoseNameIsNoTextByPixelsOnly) {
  const auto item = bar_.statusItemWithLength(squareStatusItemLength);
  item->setButtonImage(std::make_shared<LinuxImage>("Icon", "/\xff", std::vector<LinuxImage::Mask>{{1, "\xff"}}));
  EXPECT_EQ(textOf(askItem("IconThemePath")), "(<''>,)");
}

TEST_F(StatusBarTest, takesTheClicksThatAreNotForItsMenu) {
  const auto item = bar_.statusItemWithLength(squareStatusItemLength);
  item->setMenu(menu());
  EXPECT_EQ(textOf(callItem("Activate", g_variant_new("(ii)", 3, 4))), "()");
  EXPECT_EQ(textOf(callItem("SecondaryActivate", g_variant_new("(ii)", 3, 4))), "()");
  EXPECT_EQ(textOf(callItem("ContextMenu", g_variant_new("(ii)", 3, 4))), "()");
  EXPECT_EQ(textOf(callItem("Scroll", g_variant_new("(is)", 1, "vertical"))), "()");
  EXPECT_EQ(chosen_, "");
}

TEST_F(StatusBarTest, givesTheWholeMenuAtOnce) {
  const auto item = bar_.statusItemWithLength(squareStatusItemLength);
  item->setMenu(menu());
  EXPECT_EQ(textOf(callMenu("GetLayout", "(0, -1, @as [])")),
            "(2, (0, {'children-display': <'submenu'>}, ["
            "<(1, {'label': <'Reword Selection'>, 'enabled': <true>, 'visible': <true>}, @av [])>, "
            "<(2, {'type': <'separator'>}, @av [])>, "
            "<(3, {'label': <'Settings...'>, 'enabled': <true>, 'visible': <true>, "
            "'shortcut': <[['Control', 'comma']]>}, @av [])>, "
            "<(4, {'label': <'Under__score'>, 'enabled': <false>, 'visible': <true>}, @av [])>, "
            "<(5, {'label': <'Quit Tavelle'>, 'enabled': <true>, 'visible': <true>, "
            "'shortcut': <[['Control', 'q']]>}, @av [])>]))");
}

TEST_F(StatusBarTest, givesTheMenuLevelByLevel) {
  const auto item = bar_.statusItemWithLength(squareStatusItemLength);
  item->setMenu({{"One", [] {}, ""}});
  EXPECT_EQ(textOf(callMenu("GetLayout", "(0, 0, ['label'])")), "(2, (0, {}, []))");
  EXPECT_EQ(textOf(callMenu("GetLayout", "(0, 1, ['label'])")), "(2, (0, {}, [<(1, {'label': <'One'>}, @av [])>]))");
  EXPECT_EQ(textOf(callMenu("GetLayout", "(1, 1, ['label'])")), "(2, (1, {'label': <'One'>}, []))");
  EXPECT_EQ(textOf(callMenu("GetLayout", "(7, -1, @as [])")), "nothing");
}

TEST_F(StatusBarTest, givesPropertiesInGroupsAndOneByOne) {
  const auto item = bar_.statusItemWithLength(squareStatusItemLength);
  item->setMenu({{"One", [] {}, ""}, {"Two", [] {}, ""}});
  EXPECT_EQ(textOf(callMenu("GetGroupProperties", "([1, 2, 9], ['label'])")),
            "([(1, {'label': <'One'>}), (2, {'label': <'Two'>})],)");
  EXPECT_EQ(textOf(callMenu("GetGroupProperties", "(@ai [], ['label'])")),
            "([(0, {}), (1, {'label': <'One'>}), (2, {'label': <'Two'>})],)");
  EXPECT_EQ(textOf(callMenu("GetProperty", "(2, 'label')")), "(<'Two'>,)");
  EXPECT_EQ(textOf(callMenu("GetProperty", "(2, 'nonsense')")), "nothing");
  EXPECT_EQ(textOf(callMenu("GetProperty", "(9, 'label')")), "nothing");
  EXPECT_EQ(textOf(callMenu("AboutToShow", "(0,)")), "(false,)");
  EXPECT_EQ(textOf(callMenu("AboutToShowGroup", "([0],)")), "([], [])");
}

TEST_F(StatusBarTest, runsTheActionOfAClickedItemOnTheMainThread) {
  const auto item = bar_.statusItemWithLength(squareStatusItemLength);
  item->setMenu(menu());
  EXPECT_EQ(textOf(callMenu("Event", "(0, 'opened', <''>, uint32 0)")), "()");
  EXPECT_EQ(textOf(callMenu("Event", "(1, 'hovered', <''>, uint32 0)")), "()");
  EXPECT_EQ(textOf(callMenu("Event", "(1, 'clicked', <0>, uint32 1)")), "()");
  EXPECT_EQ(textOf(callMenu("EventGroup", "([(3, 'clicked', <0>, uint32 2), (9, 'clicked', <0>, uint32 2)],)")),
            "([9],)");
  EXPECT_TRUE(waitUntil([&] { return chosen_ == "reword settings "; })) << chosen_;
}

TEST_F(StatusBarTest, takesAClickOnAnItemWithoutAction) {
  const auto item = bar_.statusItemWithLength(squareStatusItemLength);
  item->setMenu(menu());
  EXPECT_EQ(textOf(callMenu("Event", "(4, 'clicked', <0>, uint32 1)")), "()");
  EXPECT_EQ(textOf(callMenu("Event", "(2, 'clicked', <0>, uint32 1)")), "()");
  EXPECT_EQ(textOf(callMenu("Event", "(9, 'clicked', <0>, uint32 1)")), "nothing");
}

TEST_F(StatusBarTest, neverTakesAClickOnAnOldMenuForOneOnTheNew) {
  const auto item = bar_.statusItemWithLength(squareStatusItemLength);
  item->setMenu({{"Harmless", [] {}, ""}});
  item->setMenu({{"Other", [this] { chosen_ = "other"; }, ""}});
  EXPECT_EQ(textOf(callMenu("Event", "(1, 'clicked', <0>, uint32 1)")), "nothing");
  EXPECT_EQ(textOf(callMenu("GetLayout", "(0, 1, ['label'])")), "(3, (0, {}, [<(2, {'label': <'Other'>}, @av [])>]))");
}

TEST_F(StatusBarTest, leavesTheBusWhenWithdrawn) {
  Watcher watcher{privateBus_};
  const auto item = bar_.statusItemWithLength(squareStatusItemLength);
  ASSERT_TRUE(waitUntil([&] { return !watcher.items.empty(); }));
  bool isGone = false;
  const auto watch = dbus::watchName(
      panel_.get(), watcher.items[0].c_str(), [] {}, [&] { isGone = true; });
  bar_.withdraw();
  EXPECT_TRUE(waitUntil([&] { return isGone; }));
  item->setMenu(menu());
  item->setButtonImage(nullptr);
}

TEST_F(StatusBarTest, outlivesTheBus) {
  const auto item = bar_.statusItemWithLength(squareStatusItemLength);
  item->setMenu(menu());
  privateBus_.end();
  ASSERT_TRUE(waitUntil([&] { return g_dbus_connection_is_closed(own_.get()); }));
  item->setMenu(menu());
  item->setButtonImage(nullptr);
  serveReady();
}

TEST(StatusBar, hasNoButtonWhereThereIsNoBus) {
  SessionBus none{nullptr};
  GLibMainActor mainActor;
  DBusStatusBar bar{none, mainActor};
  const auto item = bar.statusItemWithLength(squareStatusItemLength);
  EXPECT_FALSE(item->hasButton());
  item->setMenu({{"One", [] {}, ""}});
}

}  // namespace
}  // namespace tavelle::tests
