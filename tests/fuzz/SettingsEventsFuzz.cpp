// What a renderer that has lost its mind makes of the settings window: any event, at any node, in any order.

#include "platform/fake/FakePlatform.h"
#include "platform/linux/WindowLine.h"
#include "settings/SettingsManager.h"
#include "tests/fuzz/Fuzz.h"
#include "ui/SettingsView.h"
#include "view/Reconciler.h"
#include "view/headless/HeadlessRenderer.h"
#include "view/wire/WireError.h"

#include <memory>
#include <utility>

namespace tavelle::fuzz {
namespace {

// More than one run can find something in.
constexpr int mostEvents = 64;

Data twoProfiles() {
  const auto id = [](const char* text) { return UUID::parse(text).value(); };
  return encodeProfiles({{.id = id("00000000-0000-4000-8000-000000000001"), .name = "One", .systemPrompt = "Prompt"},
                         {.id = id("00000000-0000-4000-8000-000000000002"), .name = "", .systemPrompt = ""}});
}

// The settings window of an application with two profiles.
class SettingsWindow {
 public:
  SettingsWindow() {
    platform.defaults.values["rewriteProfiles"] = DataValue{twoProfiles()};
    reconciler->attach(&screen);
  }
  ~SettingsWindow() {
    reconciler.reset();
    cancel(platform.network);
    cancel(platform.sharedNetwork);
  }
  SettingsWindow(const SettingsWindow&) = delete;
  SettingsWindow& operator=(const SettingsWindow&) = delete;

  void take(std::string_view line) {
    try {
      const auto report = decodeReport(line);
      if (const auto* const event = std::get_if<view::Event>(&report)) reconciler->dispatch(*event);
    } catch (const view::WireError&) {
      return;
    }
    platform.loop.runUntilIdle();
  }

  void check() {
    view::HeadlessRenderer another{[](const view::Event&) {}};
    const auto shown = screen.texts();
    reconciler->attach(&another);
    require(another.texts() == shown, "a renderer that takes over shows something else");
    const auto& profiles = SettingsManager::shared().profiles();
    require(decodeProfiles(encodeProfiles(profiles)) == profiles, "profiles that cannot be stored");
  }

 private:
  // Their coroutines hold what the platform is made of.
  void cancel(FakeURLSession::Exchange& network) {
    platform.loop.runToEnd();
    while (!network.inFlight.empty()) {
      network.fail({URLError::Code::cancelled, "cancelled"});
      platform.loop.runToEnd();
    }
  }

  FakePlatform platform;
  Platform::Use use{platform};
  std::shared_ptr<view::Reconciler> reconciler = std::make_shared<view::Reconciler>(
      view::component<SettingsView>(), [this](std::function<void()> job) { platform.loop.post(std::move(job)); });
  view::HeadlessRenderer screen{[](const view::Event&) {}};
};

void run(Input input) {
  SettingsWindow window;
  for (int count = 0; count < mostEvents && !input.isEmpty(); ++count) window.take(input.takeUntil('\n'));
  window.check();
}

}  // namespace
}  // namespace tavelle::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tavelle::fuzz::run({data, size});
  return 0;
}
