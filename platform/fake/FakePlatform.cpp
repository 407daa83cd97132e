#include "platform/fake/FakePlatform.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace tavelle {
namespace {

struct FakeStatusItem : StatusItem {
  explicit FakeStatusItem(FakeStatusBar& owner) : bar(owner) {}
  ~FakeStatusItem() override {
    bar.image = nullptr;
    bar.menu.clear();
  }
  FakeStatusItem(const FakeStatusItem&) = delete;
  FakeStatusItem& operator=(const FakeStatusItem&) = delete;
  bool hasButton() const override { return bar.givesButton; }
  void setButtonImage(std::shared_ptr<Image> image) override { bar.image = std::move(image); }
  void setMenu(Menu menu) override {
    bar.log.add("set the menu");
    bar.menu = std::move(menu);
  }

  FakeStatusBar& bar;
};

}  // namespace

bool FakeAccessibility::isProcessTrusted() {
  if (nextAnswers.empty()) return trusted;
  const bool answer = nextAnswers.front();
  nextAnswers.pop_front();
  return answer;
}

bool FakeAccessibility::isProcessTrustedWithOptions(const std::map<std::string, bool>& options) {
  log.add("asked for accessibility");
  prompts.push_back(options);
  return trusted;
}

void FakeUserNotificationCenter::requestAuthorization(AuthorizationOptions options,
                                                      std::function<void(bool)> completion) {
  log.add("asked for notifications");
  authorizations.push_back(options);
  completion(granted);
}

void FakeUserNotificationCenter::add(NotificationRequest request, std::function<void(bool)> completion) {
  log.add("notified " + request.content.body);
  requests.push_back(std::move(request));
  onAdd();
  if (completion) completion(granted);
}

std::optional<InfoValue> FakeBundle::objectForInfoDictionaryKey(const std::string& key) {
  const auto found = info.find(key);
  return found == info.end() ? std::nullopt : std::optional{found->second};
}

std::shared_ptr<Image> FakeBundle::imageNamed(const std::string& name) {
  const auto found = images.find(name);
  return found == images.end() ? nullptr : found->second;
}

std::unique_ptr<StatusItem> FakeStatusBar::statusItemWithLength(double length) {
  log.add("made a status item");
  lengths.push_back(length);
  return std::make_unique<FakeStatusItem>(*this);
}

void FakeStatusBar::choose(const std::string& title) const {
  const auto item =
      std::find_if(menu.begin(), menu.end(), [&title](const MenuItem& entry) { return entry.title == title; });
  if (item == menu.end() || !item->action) throw std::logic_error{"the menu has no such entry: " + title};
  const auto action = item->action;  // which may end the item
  action();
}

int FakeApplication::run(std::span<char*>) {
  const auto target = delegate.lock();
  if (!target) return 1;
  target->applicationWillFinishLaunching();
  target->applicationDidFinishLaunching();
  return 0;
}

void FakeApplication::activateIgnoringOtherApps(bool flag) {
  log.add(flag ? "activated" : "activated behind others");
}

void FakeApplication::terminate() {
  if (std::exchange(isEnding_, true)) return;
  if (const auto target = delegate.lock()) target->applicationWillTerminate();
  log.add("terminated");
}

std::unique_ptr<URLSession> FakePlatform::makeURLSession(const URLSessionConfiguration& configuration) {
  network.configurations.push_back(configuration);
  return std::make_unique<FakeURLSession>(network);
}

std::unique_ptr<Window> FakePlatform::makeWindow(Rect contentRect, WindowStyleMask styleMask, BackingStoreType backing,
                                                 bool defer) {
  auto window = std::make_unique<FakeWindow>(log, contentRect, styleMask, backing, defer);
  windows.push_back(window.get());
  return window;
}

}  // namespace tavelle
