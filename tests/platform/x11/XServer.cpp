#include "tests/platform/x11/XServer.h"

#include "platform/FatalError.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <utility>

namespace tavelle::x11::tests {
namespace {

constexpr int startLimitMilliseconds = 30'000;

// Never returns: becomes the server, which writes the number of its display to `out`.
[[noreturn]] void becomeServer(int out, pid_t parent, const std::string& program,
                               const std::vector<std::string>& more) {
  prctl(PR_SET_PDEATHSIG, SIGTERM);  // not SIGKILL, which would leave the display's lock file behind
  if (getppid() != parent) _exit(1);
  const std::string fd = std::to_string(out);
  // It complains about every display that other tests' servers have taken, on its way to a free one.
  dup2(open("/dev/null", O_WRONLY | O_CLOEXEC), STDERR_FILENO);
  // -noreset: without it the server starts afresh, atoms forgotten, whenever its last client leaves.
  std::vector<const char*> arguments{program.c_str(), "-displayfd", fd.c_str(), "-nolisten", "tcp", "-noreset"};
  for (const auto& each : more) arguments.push_back(each.c_str());
  arguments.push_back(nullptr);
  execvp(arguments.front(), const_cast<char**>(arguments.data()));
  _exit(127);
}

// What the server said, up to the end of the line; empty where it said nothing in time.
std::string readLine(int in) {
  std::string line;
  pollfd readable{in, POLLIN, 0};
  while (poll(&readable, 1, startLimitMilliseconds) > 0) {
    char character = 0;
    if (read(in, &character, 1) != 1 || character == '\n') break;
    line += character;
  }
  return line;
}

}  // namespace

XServer::XServer(const std::string& program, const std::vector<std::string>& arguments) {
  std::array<int, 2> ends{};
  if (pipe(ends.data()) != 0) fatalError("no pipe for the test's X server");
  const pid_t parent = getpid();
  process_ = fork();
  if (process_ == 0) {
    close(ends[0]);
    becomeServer(ends[1], parent, program, arguments);
  }
  close(ends[1]);
  const std::string number = readLine(ends[0]);
  close(ends[0]);
  if (number.empty()) fatalError("the test's X server (" + program + ") did not start");
  display_ = ":" + number;
  setenv("DISPLAY", display_.c_str(), 1);
}

XServer::~XServer() {
  kill();
}

void XServer::kill() {
  const pid_t process = std::exchange(process_, -1);
  if (process <= 0) return;
  ::kill(process, SIGTERM);
  waitpid(process, nullptr, 0);
}

}  // namespace tavelle::x11::tests
