#include "platform/linux/UserNotificationCenter.h"

#include "tests/platform/contracts/UserNotificationCenterContract.h"
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

  std::string titleOf(std::size_t number) const { return textAt(number, 3); }
  std::string bodyOf(std::size_t number) const { return textAt(number, 4); }

  std::vector<GVariantPtr> received;
  int timesAsked = 0;

 private:
  std::string textAt(std::size_t number, std::size_t argument) const {
    const GVariantPtr text{g_variant_get_child_value(received.at(number).get(), argument)};
    return g_variant_get_string(text.get(), nullptr);
  }
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

// What a person reads where the body is markup.
std::string readAsMarkup(std::string body) {
  EXPECT_EQ(body.find_first_of("<>"), std::string::npos) << body;
  for (const auto& [name, character] : {std::pair{"&lt;", "<"}, {"&gt;", ">"}, {"&amp;", "&"}}) {
    for (std::size_t at = 0; (at = body.find(name, at)) != std::string::npos; ++at) {
      body.replace(at, std::string_view{name}.size(), character);
    }
  }
  return body;
}

// A desktop with a notification server.
template <bool readsMarkup>
class DesktopThatShows {
 public:
  UserNotificationCenter& center() { return center_; }
  void beRefused() { server_.reset(); }
  std::vector<std::pair<std::string, std::string>> shown() const {
    std::vector<std::pair<std::string, std::string>> all;
    for (std::size_t number = 0; server_ && number < server_->received.size(); ++number) {
      const auto body = server_->bodyOf(number);
      all.emplace_back(server_->titleOf(number), readsMarkup ? readAsMarkup(body) : body);
    }
    return all;
  }
  static bool waitUntil(const std::function<bool()>& isTrue) { return tests::waitUntil(isTrue); }

 private:
  PrivateBus privateBus_;
  std::optional<Server> server_{std::in_place, privateBus_,
                                readsMarkup ? std::vector{"body", "body-markup"} : std::vector{"body"}};
  SessionBus bus_{privateBus_.connect()};
  DBusNotificationCenter center_{bus_};
};

INSTANTIATE_TYPED_TEST_SUITE_P(AsText, UserNotificationCenterContract, DesktopThatShows<false>);
INSTANTIATE_TYPED_TEST_SUITE_P(AsMarkup, UserNotificationCenterContract, DesktopThatShows<true>);

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

TEST_F(NotificationCenterTest, asksAServerOnceWhatItCanDo) {
  Server server{privateBus_, {"body"}};
  for (int number = 0; number < 20; ++number) add(std::to_string(number));
  ASSERT_TRUE(hasOutcomes(20));
  add("last");
  ASSERT_TRUE(hasOutcomes(21));
  EXPECT_EQ(server.timesAsked, 1);
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

TEST(NotificationCenter, reportsFailureWhereThereIsNoBus) {
  SessionBus none{nullptr};
  DBusNotificationCenter center{none};
  std::optional<bool> delivered;
  center.add({"some identifier", {"Tavelle", "body", NotificationSound::none}}, [&](bool is) { delivered = is; });
  EXPECT_EQ(delivered, false);
}

}  // namespace
}  // namespace tavelle::tests
