#include "platform/linux/LinuxPlatform.h"

#include "platform/Start.h"
#include "platform/UUID.h"
#include "platform/linux/CommandLine.h"
#include "platform/linux/LinkPrivacy.h"
#include "platform/linux/Window.h"

#include <malloc.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <system_error>
#include <utility>

namespace tavelle {
namespace {

std::string valueOf(const char* variable) {
  const char* const value = std::getenv(variable);
  return value ? value : "";
}

std::string whyThereIsNoDesktop() {
  std::string reason = "Tavelle needs an X11 desktop session: no display found (";
  const std::string display = valueOf("DISPLAY");
  reason += display.empty() ? "DISPLAY is not set" : "nothing answers on " + display;
  reason += ").";
  if (!valueOf("WAYLAND_DISPLAY").empty()) {
    reason += " There is a Wayland display, on which Tavelle does not work yet; log in to an X11 session instead.";
  }
  return reason;
}

// For which the application that copies is left alone.
constexpr std::chrono::milliseconds copyHeadStart{50};

// One heap for all threads, and large texts on it: while a run lasts they come and go without the system, which would
// clear every page anew. What is free afterwards is given back by the main actor, once nothing is left to do.
void shareOneHeap() {
  constexpr int megabyte = 1024 * 1024;
  mallopt(M_ARENA_MAX, 1);
  mallopt(M_MMAP_THRESHOLD, 32 * megabyte);
  mallopt(M_TRIM_THRESHOLD, 8 * megabyte);
}

}  // namespace

std::variant<std::unique_ptr<LinuxPlatform>, int> LinuxPlatform::start(std::span<char*> arguments) {
  keepLinksPrivate(arguments);
  if (const auto exitStatus = answerCommandLine(arguments)) return *exitStatus;
  shareOneHeap();
  std::unique_ptr<LinuxPlatform> platform{new LinuxPlatform};
  if (platform->openDesktop()) return platform;
  std::fprintf(stderr, "%s\n", whyThereIsNoDesktop().c_str());
  return EXIT_FAILURE;
}

LinuxPlatform::LinuxPlatform() = default;

LinuxPlatform::~LinuxPlatform() = default;

bool LinuxPlatform::openDesktop() {
  desktop_ = x11::Desktop::open(mainActor_);
  if (!desktop_) return false;
  editingKeys_ = desktop_->postedEditingKeys().subscribe([this](const x11::PostedEditingKey& posted) {
    if (posted.key == x11::EditingKey::copy) mainActor_.postAfter(copyHeadStart, [this] { getReadyForModel(); });
  });
  desktopLost_ = desktop_->lost().subscribe([this] { application_.screenHasGone(); });
  application_.setEnding({[this] {
                            statusBar_.withdraw();
                            desktop_->carbonEvents().withdraw();
                          },
                          [this](std::function<void()> done) { desktop_->handOver(std::move(done)); }});
  return true;
}

// A request needs a program and a key, and they take longer to get than all else that a run does. There is time for
// them while the run waits for the copy. The main thread goes on serving the clipboard and the keyboard meanwhile.
void LinuxPlatform::getReadyForModel() {
  transfers_->prepare();
  try {
    preparations_.post([this] { keychain_.readAhead(); });
  } catch (const std::system_error&) {
    // There can be no thread for it; the run reads the key itself.
  }
}

UserDefaults& LinuxPlatform::standardUserDefaults() {
  if (!userDefaults_) userDefaults_.emplace(JSONUserDefaults::standardFile());
  return *userDefaults_;
}

std::unique_ptr<URLSession> LinuxPlatform::makeURLSession(const URLSessionConfiguration& configuration) {
  return std::make_unique<LinuxURLSession>(configuration, transfers_);
}

std::unique_ptr<SerialExecutor> LinuxPlatform::makeSerialExecutor() {
  return std::make_unique<LinuxSerialExecutor>();
}

std::unique_ptr<Window> LinuxPlatform::makeWindow(Rect contentRect, WindowStyleMask, BackingStoreType, bool) {
  return std::make_unique<LinuxWindow>(
      mainActor_, contentRect, LinuxWindow::Drawing{LinuxWindow::standardProgram()},
      [this](std::function<void()> onPress) { return desktop_->pointerPresses().subscribe(std::move(onPress)); },
      [this](const std::string& trouble, const std::string& cause) { tellTrouble(trouble, cause); });
}

// Of what the person asked for and does not see: it has no other place to be told.
void LinuxPlatform::tellTrouble(const std::string& trouble, const std::string& cause) {
  std::fprintf(stderr, "Tavelle: %s (%s)\n", trouble.c_str(), cause.c_str());
  notificationCenter_.add({.identifier = UUID::random().uuidString(), .content = {.title = "Tavelle", .body = trouble}},
                          [](bool) {});
}

std::variant<std::unique_ptr<Platform>, int> startPlatform(std::span<char*> arguments) {
  auto started = LinuxPlatform::start(arguments);
  if (const auto* status = std::get_if<int>(&started)) return *status;
  return std::move(std::get<std::unique_ptr<LinuxPlatform>>(started));
}

}  // namespace tavelle
