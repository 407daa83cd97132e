#include "platform/linux/AppleEvents.h"
#include "platform/linux/Application.h"
#include "tests/platform/contracts/AppleEventsContract.h"
#include "tests/platform/contracts/ApplicationContract.h"
#include "tests/platform/linux/TemporaryFolder.h"
#include "tests/support/Environment.h"

#include <array>
#include <string>

namespace tavelle::tests {
namespace {

struct DesktopsLinks {
  AppleEventManager& manager() { return own; }
  void openLink(const std::string& url) { own.getURL(url); }
  LinuxAppleEventManager own;
};

// In this process, on a desktop without a session bus.
class OwnApplication {
 public:
  Application& application() { return application_; }

  int run(const std::function<void()>& whenLaunched) {
    GSourcePtr launched;
    launched = makeSource("launched", [&] {
      launched.reset();
      whenLaunched();
    });
    g_source_set_ready_time(launched.get(), 0);
    std::string name = "tavelle";
    std::array<char*, 1> arguments{name.data()};
    return application_.run(arguments);
  }

 private:
  TemporaryFolder runtime_;
  Environment environment_{{{"DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent"},
                            {"XDG_RUNTIME_DIR", runtime_.path().string()},
                            {"DISPLAY", ":7"}}};
  SessionBus bus_;
  LinuxAppleEventManager events_;
  LinuxApplication application_{bus_, events_};
};

INSTANTIATE_TYPED_TEST_SUITE_P(Desktop, AppleEventsContract, DesktopsLinks);
INSTANTIATE_TYPED_TEST_SUITE_P(GApplication, ApplicationContract, OwnApplication);

}  // namespace
}  // namespace tavelle::tests
