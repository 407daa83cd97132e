// A Tavelle with nothing in it but the application object: it says what it is told.

#include "platform/linux/Application.h"
#include "platform/linux/CommandLine.h"
#include "platform/linux/GSourcePtr.h"
#include "platform/linux/LinkPrivacy.h"

#include <glib-unix.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <utility>

namespace {

using namespace tavelle;

struct Delegate : ApplicationDelegate {
  void applicationWillFinishLaunching() override { std::puts("will finish launching"); }
  void applicationDidFinishLaunching() override { std::puts("did finish launching"); }
  void applicationShouldHandleReopen() override { std::puts("should handle reopen"); }
  void applicationWillTerminate() override { std::puts("will terminate"); }
};

std::function<void()> onUserSignal;

gboolean userSignal(gpointer) {
  onUserSignal();
  return G_SOURCE_CONTINUE;
}

}  // namespace

int main(int argc, char** argv) {
  const std::span<char*> arguments{argv, static_cast<std::size_t>(argc)};
  keepLinksPrivate(arguments);
  if (const auto status = answerCommandLine(arguments)) return *status;

  SessionBus bus;
  LinuxAppleEventManager events;
  events.setEventHandler(
      [](const AppleEvent& event, AppleEvent&) {
        std::printf("get URL %s\n", event.paramDescriptorForKeyword(keyDirectObject)->stringValue->c_str());
      },
      kInternetEventClass, kAEGetURL);
  LinuxApplication application{bus, events};
  const auto delegate = std::make_shared<Delegate>();
  application.setDelegate(delegate);

  // SIGUSR1: a sign of life, or the end of the handing over.
  onUserSignal = [] { std::puts("alive"); };
  g_unix_signal_add(SIGUSR1, userSignal, nullptr);
  application.setEnding({[] { std::puts("withdraw"); },
                         [](std::function<void()> done) {
                           std::puts("handing over");
                           if (!std::getenv("TAVELLE_TEST_LINGERS")) return done();
                           onUserSignal = std::move(done);
                         }});
  // SIGUSR2: quit from the menu.
  const auto quit = [](gpointer self) -> gboolean {
    static_cast<LinuxApplication*>(self)->terminate();
    std::puts("terminate returned");
    return G_SOURCE_CONTINUE;
  };
  g_unix_signal_add(SIGUSR2, quit, &application);

  const int status = application.run(arguments);
  std::puts("ended");
  return status;
}
