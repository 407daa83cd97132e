#include "platform/linux/UserNotificationCenter.h"

#include "tests/platform/linux/MainLoop.h"
#include "tests/platform/linux/SessionBus.h"

#include <gtest/gtest.h>

namespace tavelle::tests {
namespace {

constexpr const char* serverName = "org.freedesktop.Notifications";
constexpr const char* serverPath = "/org/freedesktop/Notifications";
constexpr const char* serverXML = R"xml(<node><interface name="org.freedesktop.Notifications">
  <method name="GetCapabilities"><arg type="as" direction="out"/></method>
  <method name="Notify">
    <arg type="s" direction="in"/><arg type="u" direction="in"/><arg type="s" direction="in"/><arg type="s" direction="in"/>
    <arg type="s" direction="in"/><arg type="as" direction="in"/><arg type="a{sv}" direction="in"/><arg type="i" direction="in"/>
    <arg type="u" direction="out"/>
  </method>
</interface></node>)xml";

// A notification server that keeps what it is sent.
class Server {
 public:
  Server(const PrivateBus& bus, std::vector<const char*> capabilities)
      : capabilities_(std::move(capabilities)), connection_(bus.connect()) {
    const auto answer = [this](std::string_view method, GVariant* arguments, GError**) {
      return method == "Notify" ? notify(arguments) : getCapabilities();
    };
    object_ = dbus::exportObject(connection_.get(), serverPath, serverXML, {answer, {}});
    name_ = dbus::ownName(connection_.get(), serverName);
  }

  std::string bodyOf(std::size_t number) const {
    const GVariantPtr body{g_variant_get_child_value(received.at(number).get(), 4)};
    return g_variant_get_string(body.get(), nullptr);
  }

  std::vector<GVariantPtr> received;
  int timesAsked = 0;

 private:
  GVariant* getCapabilities() {
    ++timesAsked;
    GVariant* const list = g_variant_new_strv(capabilities_.data(), static_cast<gssize>(capabilities_.size()));
    return g_variant_new("(@as)", list);
  }
  GVariant* notify(GVariant* arguments) {
    received.emplace_back(g_variant_ref(arguments));
    return g_variant_new("(u)", static_cast<guint32>(received.size()));
  }

  std::vector<const char*> capabilities_;
  GObjectPtr<GDBusConnection> connection_;
  dbus::Registration object_;
  dbus::Registration name_;
};

class NotificationCenterTest : public testing::Test {
 protected:
  void add(const std::string& body, NotificationSound sound = NotificationSound::systemDefault) {
    center_.add({"some identifier", {"Tavelle", body, sound}},
                [this](bool delivered) { outcomes_.push_back(delivered); });
  }
  bool hasOutcomes(std::size_t count) {
    return waitUntil([&] { return outcomes_.size() == count; });
  }

  PrivateBus privateBus_;
  GObjectPtr<GDBusConnection> own_ = privateBus_.connect();
  SessionBus bus_{GObjectPtr<GDBusConnection>{G_DBUS_CONNECTION(g_object_ref(own_.get()))}};
  DBusNotificationCenter center_{bus_};
  std::vector<bool> outcomes_;
};

TEST_F(NotificationCenterTest, sendsEachRequestAsANewNotification) {
  Server server{privateBus_, {"body"}};
  add("Done!");
  add("Done!", NotificationSound::none);
  ASSERT_TRUE(hasOutcomes(2));
  EXPECT_EQ(outcomes_, (std::vector{true, true}));
  ASSERT_EQ(server.received.size(), 2u);
  EXPECT_EQ(textOf(server.received[0]),
            "('Tavelle', 0, '', 'Tavelle', 'Done!', [], {'desktop-entry': <'app.tavelle.Tavelle'>, "
            "'sound-name': <'message-new-instant'>}, -1)");
  EXPECT_EQ(textOf(server.received[1]),
            "('Tavelle', 0, '', 'Tavelle', 'Done!', [], {'desktop-entry': <'app.tavelle.Tavelle'>, "
            "'suppress-sound': <true>}, -1)");
}

TEST_F(NotificationCenterTest, keepsTheOrderAndAsksAServerOnce) {
  Server server{privateBus_, {"body"}};
  for (int number = 0; number < 20; ++number) add(std::to_string(number));
  ASSERT_TRUE(hasOutcomes(20));
  add("last");
  ASSERT_TRUE(hasOutcomes(21));
  for (std::size_t number = 0; number < 20; ++number) EXPECT_EQ(server.bodyOf(number), std::to_string(number));
  EXPECT_EQ(server.timesAsked, 1);
}

TEST_F(NotificationCenterTest, escapesTheBodyForAServerThatReadsMarkup) {
  Server server{privateBus_, {"body", "body-markup"}};
  add("<b>a & b</b>");
  ASSERT_TRUE(hasOutcomes(1));
  EXPECT_EQ(server.bodyOf(0), "&lt;b&gt;a &amp; b&lt;/b&gt;");
}

TEST_F(NotificationCenterTest, sendsTheBodyPlainToAServerThatDoesNot) {
  Server server{privateBus_, {"body"}};
  add("<b>a & b</b>");
  ASSERT_TRUE(hasOutcomes(1));
  EXPECT_EQ(server.bodyOf(0), "<b>a & b</b>");
}

TEST_F(NotificationCenterTest, asksEachNewServerWhatItCanDo) {
  {
    Server server{privateBus_, {"body"}};
    add("<");
    ASSERT_TRUE(hasOutcomes(1));
    EXPECT_EQ(server.bodyOf(0), "<");
  }
  bool isGone = false;
  const auto watch = dbus::watchName(
      own_.get(), serverName, [] {}, [&] { isGone = true; });
  ASSERT_TRUE(waitUntil([&] { return isGone; }));
  Server server{privateBus_, {"body-markup"}};
  ASSERT_TRUE(waitUntil([&] { return add("<"), !server.received.empty(); }));
  EXPECT_EQ(server.bodyOf(0), "&lt;");
}

TEST_F(NotificationCenterTest, cutsAnEnormousBody) {
  Server server{privateBus_, {"body-markup"}};
  add(std::string(50'000'000, '<'));
  ASSERT_TRUE(hasOutcomes(1));
  const auto body = server.bodyOf(0);
  EXPECT_LT(body.size(), 20'000u);
  EXPECT_TRUE(body.ends_with("&lt;\u2026"));
}

TEST_F(NotificationCenterTest, sendsAnyBytes) {
  Server server{privateBus_, {"body"}};
  std::string everyByte;
  for (int byte = 0; byte < 256; ++byte) everyByte += static_cast<char>(byte);
  add(everyByte);
  add("after");
  ASSERT_TRUE(hasOutcomes(2));
  EXPECT_EQ(outcomes_, (std::vector{true, true}));
  EXPECT_EQ(server.bodyOf(1), "after");
}

TEST_F(NotificationCenterTest, reportsFailureWhereNobodyShowsNotifications) {
  add("one");
  ASSERT_TRUE(hasOutcomes(1));
  EXPECT_EQ(outcomes_, (std::vector{false}));
  Server server{privateBus_, {"body"}};
  ASSERT_TRUE(waitUntil([&] { return add("two"), !server.received.empty(); })) << "it must ask again";
}

TEST_F(NotificationCenterTest, losesNothingWhileTheBusStartsTheServer) {
  privateBus_.addService(serverName, "/usr/bin/python3 -m dbusmock --session --template notification_daemon");
  for (int number = 0; number < 10; ++number) add("body " + std::to_string(number));
  ASSERT_TRUE(hasOutcomes(10));
  EXPECT_EQ(outcomes_, std::vector<bool>(10, true));
}

TEST_F(NotificationCenterTest, boundsWhatWaitsForAServer) {
  for (int number = 0; number < 1'000; ++number) add("body");
  EXPECT_GT(outcomes_.size(), 900u) << "refused at once";
  ASSERT_TRUE(hasOutcomes(1'000));
}

TEST_F(NotificationCenterTest, outlivesTheBus) {
  Server server{privateBus_, {"body"}};
  add("before");
  ASSERT_TRUE(hasOutcomes(1));
  privateBus_.end();
  add("after");
  ASSERT_TRUE(hasOutcomes(2));
  EXPECT_EQ(outcomes_, (std::vector{true, false}));
}

TEST_F(NotificationCenterTest, grantsAuthorizationWhereThereIsABus) {
  std::optional<bool> granted;
  center_.requestAuthorization(AuthorizationOptions::alert | AuthorizationOptions::sound,
                               [&](bool is) { granted = is; });
  EXPECT_EQ(granted, true);
}

TEST(NotificationCenter, reportsFailureWhereThereIsNoBus) {
  SessionBus none{nullptr};
  DBusNotificationCenter center{none};
  std::optional<bool> delivered;
  center.add({"some identifier", {"Tavelle", "body", NotificationSound::none}}, [&](bool is) { delivered = is; });
  EXPECT_EQ(delivered, false);
  center.add({"some identifier", {"Tavelle", "body", NotificationSound::none}}, nullptr);
}

}  // namespace
}  // namespace tavelle::tests
