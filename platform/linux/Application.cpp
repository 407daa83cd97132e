#include "platform/linux/Application.h"

#include "platform/linux/GDBus.h"

#include <glib-unix.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace tavelle {

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
  const int status = g_application_run(application_.get(), static_cast<int>(arguments.size()), arguments.data());
  if (isAnotherRunning_) std::puts("Tavelle is already running.");
  return status != 0 ? status : exitStatus_;
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
    ending_.handOver([this] { quit(0); });
  } else {
    quit(0);
  }
}

void LinuxApplication::quit(int exitStatus) {
  isEnding_ = true;
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
