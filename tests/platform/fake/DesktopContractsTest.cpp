#include "platform/fake/FakePlatform.h"
#include "tests/platform/contracts/AppleEventsContract.h"
#include "tests/platform/contracts/ApplicationContract.h"
#include "tests/platform/contracts/StatusBarContract.h"
#include "tests/platform/contracts/UserNotificationCenterContract.h"
#include "tests/platform/contracts/WindowContract.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace tavelle::tests {
namespace {

struct EventsInMemory {
  AppleEventManager& manager() { return fake; }
  void openLink(const std::string& url) { fake.getURL(url); }
  FakeAppleEventManager fake;
};

struct ApplicationInMemory {
  Application& application() { return fake; }
  int run(const std::function<void()>& whenLaunched) {
    const int status = fake.run({});
    whenLaunched();
    return status;
  }

  EventLog log;
  FakeApplication fake{log};
};

struct BarInMemory {
  StatusBar& statusBar() { return fake; }
  static std::shared_ptr<Image> image() { return std::make_shared<FakeImage>(); }
  std::vector<std::string> shown() const {
    std::vector<std::string> entries;
    for (const auto& entry : fake.menu) {
      entries.push_back(entry.isSeparator() ? "-" : entry.title + (entry.action ? "" : " (disabled)"));
    }
    return entries;
  }
  void choose(const std::string& title) const { fake.choose(title); }

  EventLog log;
  FakeStatusBar fake{log};
};

struct NotificationsInMemory {
  UserNotificationCenter& center() { return fake; }
  void beRefused() { fake.granted = false; }
  std::vector<std::pair<std::string, std::string>> shown() const {
    std::vector<std::pair<std::string, std::string>> all;
    if (!fake.granted) return all;
    for (const auto& request : fake.requests) all.emplace_back(request.content.title, request.content.body);
    return all;
  }
  static bool waitUntil(const std::function<bool()>& isTrue) { return isTrue(); }

  EventLog log;
  FakeUserNotificationCenter fake{log};
};

struct WindowInMemory {
  Window& window() { return *fake; }
  void closeForGood() { fake.reset(); }
  bool isShown() const { return fake->isVisible; }
  std::string title() const { return fake->title; }
  std::vector<std::string> texts() const { return fake->screen.texts(); }
  void press() { fake->screen.press(texts().front()); }
  static bool waitUntil(const std::function<bool()>& isTrue) { return isTrue(); }

  EventLog log;
  std::unique_ptr<FakeWindow> fake = std::make_unique<FakeWindow>(log, Rect{0, 0, 480, 500}, WindowStyleMask::titled,
                                                                  BackingStoreType::buffered, false);
};

INSTANTIATE_TYPED_TEST_SUITE_P(InMemory, AppleEventsContract, EventsInMemory);
INSTANTIATE_TYPED_TEST_SUITE_P(InMemory, ApplicationContract, ApplicationInMemory);
INSTANTIATE_TYPED_TEST_SUITE_P(InMemory, StatusBarContract, BarInMemory);
INSTANTIATE_TYPED_TEST_SUITE_P(InMemory, UserNotificationCenterContract, NotificationsInMemory);
INSTANTIATE_TYPED_TEST_SUITE_P(InMemory, WindowContract, WindowInMemory);

}  // namespace
}  // namespace tavelle::tests
