#include "platform/linux/MainActor.h"
#include "platform/linux/Window.h"
#include "tests/platform/contracts/WindowContract.h"
#include "tests/platform/linux/MainLoop.h"
#include "tests/platform/linux/TemporaryFolder.h"
#include "view/headless/HeadlessRenderer.h"

#include <sys/stat.h>

#include <fstream>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace tavelle::tests {
namespace {

// What stands in for the renderer: it notes what it hears, says that it has drawn the window, and has the button
// pressed when it is told to through the pipe "press".
constexpr const char* renderer = R"(#!/usr/bin/python3
import json, os, select
os.chdir("%s")
window, press = 3, os.open("press", os.O_RDWR)
heard = open("heard", "wb", buffering=0)
said, pressed = b"", 0
while True:
    ready, _, _ = select.select([window, press], [], [])
    if window in ready:
        try:
            data = os.read(window, 65536)
        except ConnectionError:
            data = b""
        if not data:
            break
        heard.write(data)
        *lines, said = (said + data).split(b"\n")
        for order in map(json.loads, lines):
            if isinstance(order, list):
                os.write(window, json.dumps(["presented", {"number": order[1]["number"]}]).encode() + b"\n")
    if press in ready:
        os.read(press, 1)
        pressed += 1
        os.write(window, json.dumps({"number": pressed, "target": 1, "pressed": True}).encode() + b"\n")
)";

class WindowOfAnotherProcess {
 public:
  WindowOfAnotherProcess() {
    auto script = std::string{renderer};
    script.replace(script.find("%s"), 2, folder_.path().string());
    write(file("renderer"), script);
    std::filesystem::permissions(file("renderer"), std::filesystem::perms::owner_all);
    EXPECT_EQ(mkfifo(file("press").c_str(), S_IRUSR | S_IWUSR), 0);
  }

  Window& window() { return *window_; }
  void closeForGood() { window_.reset(); }

  bool isShown() const { return lastPresent().has_value(); }
  std::string title() const { return lastPresent().value().title; }

  // As the renderer would show them.
  std::vector<std::string> texts() const {
    view::HeadlessRenderer screen{[](const view::Event&) {}};
    for (const auto& order : heard()) {
      if (const auto* const batch = std::get_if<view::Batch>(&order)) screen.apply(*batch);
    }
    return screen.texts();
  }

  void press() { std::ofstream{file("press")} << 'x'; }

  // Other processes change what is looked at: it is looked at again every so often.
  static bool waitUntil(const std::function<bool()>& isTrue) {
    const auto look = makeSource("another look", [] {});
    return tests::waitUntil([&] {
      g_source_set_ready_time(look.get(), g_get_monotonic_time() + G_USEC_PER_SEC / 100);
      return isTrue();
    });
  }

 private:
  using Order = decltype(decodeOrder(std::string_view{}));

  std::filesystem::path file(const char* name) const { return folder_.path() / name; }

  // Whole lines only: the last may still be on its way.
  std::vector<Order> heard() const {
    std::vector<Order> orders;
    std::istringstream text{contentsOf(file("heard"))};
    for (std::string line; std::getline(text, line) && !text.eof();) orders.push_back(decodeOrder(line));
    return orders;
  }

  std::optional<Present> lastPresent() const {
    std::optional<Present> last;
    for (const auto& order : heard()) {
      if (const auto* const present = std::get_if<Present>(&order)) last = *present;
    }
    return last;
  }

  TemporaryFolder folder_;
  GLibMainActor actor_;
  std::unique_ptr<LinuxWindow> window_ = std::make_unique<LinuxWindow>(
      actor_, Rect{0, 0, 480, 500}, LinuxWindow::Drawing{file("renderer")},
      [](const std::function<void()>&) { return Subscription{}; },
      [](const std::string& trouble, const std::string& cause) { ADD_FAILURE() << trouble << " " << cause; });
};

INSTANTIATE_TYPED_TEST_SUITE_P(OfAnotherProcess, WindowContract, WindowOfAnotherProcess);

}  // namespace
}  // namespace tavelle::tests
