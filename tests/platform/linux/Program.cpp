#include "tests/platform/linux/Program.h"

#include "platform/FatalError.h"
#include "tests/platform/linux/MainLoop.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>

namespace tavelle::tests {

Program::Program(const std::vector<std::string>& command, const std::map<std::string, std::string>& environment) {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) fatalError("no pipe for a test's program");
  pipe_ = FileDescriptor{ends[0]};
  fcntl(pipe_.get(), F_SETFL, O_NONBLOCK);

  const GObjectPtr<GSubprocessLauncher> launcher{g_subprocess_launcher_new(G_SUBPROCESS_FLAGS_NONE)};
  g_subprocess_launcher_take_stdout_fd(launcher.get(), ends[1]);
  g_subprocess_launcher_take_stderr_fd(launcher.get(), dup(ends[1]));
  g_subprocess_launcher_set_child_setup(
      launcher.get(), [](gpointer) { prctl(PR_SET_PDEATHSIG, SIGKILL); }, nullptr, nullptr);
  for (const auto& [name, value] : environment) {
    if (value.empty()) {
      g_subprocess_launcher_unsetenv(launcher.get(), name.c_str());
    } else {
      g_subprocess_launcher_setenv(launcher.get(), name.c_str(), value.c_str(), true);
    }
  }
  std::vector<const char*> arguments;
  for (const auto& argument : command) arguments.push_back(argument.c_str());
  arguments.push_back(nullptr);
  GErrorPtr error;
  process_.reset(g_subprocess_launcher_spawnv(launcher.get(), arguments.data(), Out{error}));
  if (!process_) fatalError(error->message);
  const auto noteEnd = [](GObject*, GAsyncResult*, gpointer box) {
    const std::unique_ptr<std::shared_ptr<bool>> hasEnded{static_cast<std::shared_ptr<bool>*>(box)};
    **hasEnded = true;
  };
  g_subprocess_wait_async(process_.get(), nullptr, noteEnd,
                          std::make_unique<std::shared_ptr<bool>>(hasEnded_).release());
  reader_ = makeSource(
      "output of a program", [this] { readOutput(); }, pipe_.get());
}

Program::~Program() {
  g_subprocess_force_exit(process_.get());
  g_subprocess_wait(process_.get(), nullptr, nullptr);
}

void Program::readOutput() {
  std::array<char, 4096> piece;
  const auto count = read(pipe_.get(), piece.data(), piece.size());
  if (count > 0) output_.append(piece.data(), static_cast<std::size_t>(count));
  if (count == 0) {
    isOutputOver_ = true;
    reader_.reset();
  }
}

bool Program::hasWritten(const std::string& text) {
  return waitUntil([&] { return output_.find(text) != std::string::npos || isOutputOver_; }) &&
         output_.find(text) != std::string::npos;
}

int Program::exitStatus() {
  if (!waitUntil([this] { return isOutputOver_ && !isRunning(); }))
    fatalError("a test's program does not end:\n" + output_);
  constexpr int endedBySignal = 1000;
  if (g_subprocess_get_if_exited(process_.get())) return g_subprocess_get_exit_status(process_.get());
  return endedBySignal + g_subprocess_get_term_sig(process_.get());
}

void Program::signal(int number) {
  g_subprocess_send_signal(process_.get(), number);
}

int Program::processID() const {
  return std::atoi(g_subprocess_get_identifier(process_.get()));
}

}  // namespace tavelle::tests
