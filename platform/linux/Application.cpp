#include "platform/linux/Application.h"

#include "platform/UTF8.h"
#include "platform/linux/GDBus.h"

#include <glib-unix.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace tavelle {
namespace {

constexpr const char* objectPath = "/app/tavelle/Tavelle";  // as GApplication has it

// The links of the command line, where there is nothing else on it.
std::span<char*> linksIn(std::span<char*> arguments) {
  const auto given = arguments.subspan(std::min<std::size_t>(1, arguments.size()));
  const bool hasOptions = std::any_of(given.begin(), given.end(), [](const char* each) { return *each == '-'; });
  return hasOptions ? std::span<char*>{} : given;
}

}  // namespace

LinuxApplication::LinuxApplication(SessionBus& bus, LinuxAppleEventManager& events)
    : bus_(bus), events_(events), application_(g_application_new(applicationID, G_APPLICATION_HANDLES_OPEN)) {
  g_signal_connect(application_.get(), "notify::is-registered", G_CALLBACK(onRegistered), this);
  g_signal_connect(application_.get(), "startup", G_CALLBACK(onStartup), this);
  g_signal_connect(application_.get(), "activate", G_CALLBACK(onActivate), this);
  g_signal_connect(application_.get(), "open", G_CALLBACK(onOpen), this);
}

LinuxApplication::~LinuxApplication() {
  g_signal_handlers_disconnect_by_data(application_.get(), this);
}

int LinuxApplication::run(std::span<char*> arguments) {
  std::setvbuf(stdout, nullptr, _IOLBF, 0);  // its lines are read while it runs: by a terminal, a journal, a script
  if (passOn(linksIn(arguments))) return EXIT_SUCCESS;
  const int status = g_application_run(application_.get(), static_cast<int>(arguments.size()), arguments.data());
  if (isAnotherRunning_) std::puts("Tavelle is already running.");
  return status != 0 ? status : exitStatus_;
}

// Gives the links to the one that runs, or to one that the bus starts, so that this process ends: what opened a link
// may wait for that, and shows the link in the list of processes meanwhile. False where nobody took them. There is no
// main loop yet that the call could hold up.
bool LinuxApplication::passOn(std::span<char*> links) {
  auto* const connection = links.empty() ? nullptr : bus_.connection();
  const bool areTexts = std::all_of(links.begin(), links.end(), [](const char* each) { return isUTF8(each); });
  if (!connection || !areTexts) return false;
  GVariantBuilder urls;
  g_variant_builder_init(&urls, G_VARIANT_TYPE_STRING_ARRAY);
  for (const char* const link : links) {
    const GObjectPtr<GFile> file{g_file_new_for_commandline_arg(link)};
    g_variant_builder_add_value(&urls, g_variant_new_take_string(g_file_get_uri(file.get())));
  }
  constexpr int usualTimeout = -1;
  const GVariantPtr reply{g_dbus_connection_call_sync(
      connection, applicationID, objectPath, "org.freedesktop.Application", "Open",
      g_variant_new("(as@a{sv})", &urls, g_variant_new_array(G_VARIANT_TYPE("{sv}"), nullptr, 0)), nullptr,
      G_DBUS_CALL_FLAGS_NONE, usualTimeout, nullptr, nullptr)};
  return reply != nullptr;
}

void LinuxApplication::onRegistered(GApplication* application, GParamSpec*, gpointer self) {
  if (g_application_get_is_registered(application) && g_application_get_is_remote(application)) {
    static_cast<LinuxApplication*>(self)->isAnotherRunning_ = true;
  }
}

// Called in the first instance only, once it is known to be the first.
void LinuxApplication::onStartup(GApplication*, gpointer self) {
  static_cast<LinuxApplication*>(self)->launch();
}

void LinuxApplication::launch() {
  bus_.adopt(g_application_get_dbus_connection(application_.get()));
  if (!lock_.acquire()) {
    isAnotherRunning_ = true;
    g_application_quit(application_.get());
    return;
  }
  watchSignals();
  g_application_hold(application_.get());  // there is no window to keep it running
  tellDelegate(&ApplicationDelegate::applicationWillFinishLaunching);
  if (!isEnding_) tellDelegate(&ApplicationDelegate::applicationDidFinishLaunching);
}

void LinuxApplication::onActivate(GApplication*, gpointer self) {
  static_cast<LinuxApplication*>(self)->reopen();
}

// Links arrive here, whoever opened them; those that started the process after its launch.
void LinuxApplication::onOpen(GApplication*, GFile** links, int count, const char*, gpointer self) {
  for (GFile* const link : std::span{links, static_cast<std::size_t>(count)}) {
    static_cast<LinuxApplication*>(self)->openLink(link);
  }
}

void LinuxApplication::openLink(GFile* link) {
  isLaunchActivationDue_ = false;
  if (isAnotherRunning_) {
    std::fputs("Tavelle: the link could not be passed to the one that is running: it is on no session bus of ours\n",
               stderr);
    exitStatus_ = EXIT_FAILURE;
    return;
  }
  const GPtr<> url{g_file_get_uri(link)};
  events_.getURL(url.get());
}

void LinuxApplication::reopen() {
  // A start is followed by an activation of its own, whether the person or the bus started the process.
  const bool belongsToLaunch = std::exchange(isLaunchActivationDue_, false);
  if (!belongsToLaunch && !isEnding_) tellDelegate(&ApplicationDelegate::applicationShouldHandleReopen);
}

void LinuxApplication::terminate() {
  if (std::exchange(isEnding_, true)) return;
  // From here on a new start is a new instance, however long the handing over takes.
  giveUpName();
  lock_.release();
  tellDelegate(&ApplicationDelegate::applicationWillTerminate);
  if (ending_.withdraw) ending_.withdraw();
  if (ending_.handOver) {
    ending_.handOver([this] { quit(EXIT_SUCCESS); });
  } else {
    quit(EXIT_SUCCESS);
  }
}

void LinuxApplication::screenHasGone() {
  if (isEnding_) return quit(EXIT_SUCCESS);
  isEnding_ = true;
  std::fputs("Tavelle: the X11 display is gone\n", stderr);
  quit(EXIT_FAILURE);
}

void LinuxApplication::quit(int exitStatus) {
  exitStatus_ = exitStatus;
  g_application_quit(application_.get());
}

void LinuxApplication::watchSignals() {
  watchSignal<SIGTERM>();
  watchSignal<SIGINT>();
  watchSignal<SIGHUP>();
}

template <int number>
void LinuxApplication::watchSignal() {
  struct sigaction current {};
  sigaction(number, nullptr, &current);
  if (current.sa_handler == SIG_IGN) return;  // as nohup wants it
  const auto received = [](gpointer data) -> gboolean {
    std::signal(number, SIG_DFL);
    static_cast<LinuxApplication*>(data)->terminate();
    return G_SOURCE_REMOVE;
  };
  GSourcePtr source{g_unix_signal_source_new(number)};
  g_source_set_callback(source.get(), received, this, nullptr);
  g_source_attach(source.get(), nullptr);
  signals_.push_back(std::move(source));
}

// GApplication itself would keep the name until the loop has ended.
void LinuxApplication::giveUpName() const {
  if (auto* const connection = bus_.connection()) dbus::releaseName(connection, applicationID);
}

template <typename Tell>
void LinuxApplication::tellDelegate(Tell tell) {
  if (const auto delegate = delegate_.lock()) ((*delegate).*tell)();
}

}  // namespace tavelle
