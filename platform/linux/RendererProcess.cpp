#include "platform/linux/RendererProcess.h"

#include "platform/linux/InheritedSocket.h"

#include <sys/prctl.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <utility>

namespace tavelle {
namespace {

// One that is frozen does not notice that the socket has ended, and must not outlive the program either.
void endWithParent(gpointer) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
}

}  // namespace

RendererProcess::RendererProcess(const std::filesystem::path& program, LineSocket::Handlers handlers) {
  std::array<int, 2> ends{};
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) throw CannotStart{std::strerror(errno)};
  FileDescriptor ours{ends[0]};

  const GObjectPtr<GSubprocessLauncher> launcher{g_subprocess_launcher_new(G_SUBPROCESS_FLAGS_NONE)};
  g_subprocess_launcher_take_fd(launcher.get(), ends[1], inheritedDescriptor);
  g_subprocess_launcher_set_child_setup(launcher.get(), endWithParent, nullptr, nullptr);
  // A small window of plain widgets is drawn sooner, and in less memory, without the graphics card.
  g_subprocess_launcher_setenv(launcher.get(), "GSK_RENDERER", "cairo", false);
  GErrorPtr error;
  process_.reset(g_subprocess_launcher_spawn(launcher.get(), Out{error}, program.c_str(), nullptr));
  if (!process_) throw CannotStart{error->message};
  socket_ = std::make_unique<LineSocket>(std::move(ours), std::move(handlers));
}

RendererProcess::~RendererProcess() {
  g_subprocess_force_exit(process_.get());
}

}  // namespace tavelle
