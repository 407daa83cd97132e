#include "tests/platform/x11/Xephyr.h"

#include "platform/FatalError.h"
#include "platform/linux/x11/XcbReply.h"

#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>

namespace tavelle::x11::tests {
namespace {

constexpr int startLimitMilliseconds = 30'000;

// Never returns: becomes the server, which writes the number of its display to `out`.
[[noreturn]] void becomeServer(int out, pid_t parent) {
  prctl(PR_SET_PDEATHSIG, SIGTERM);
  if (getppid() != parent) _exit(1);
  const std::string fd = std::to_string(out);
  execlp("Xephyr", "Xephyr", "-displayfd", fd.c_str(), "-screen", "1024x768", "-nolisten", "tcp", "-noreset", nullptr);
  _exit(127);
}

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

Xephyr::Xephyr(Repeats repeats) {
  if (repeats == Repeats::inside) stopRepeatsOfHost();
  std::array<int, 2> ends{};
  if (pipe(ends.data()) != 0) fatalError("no pipe for the test's nested X server");
  const pid_t parent = getpid();
  process_ = fork();
  if (process_ == 0) {
    close(ends[0]);
    becomeServer(ends[1], parent);
  }
  close(ends[1]);
  const std::string number = readLine(ends[0]);
  close(ends[0]);
  if (number.empty()) fatalError("the test's nested X server (Xephyr) did not start");
  display_ = ":" + number;
  setenv("DISPLAY", display_.c_str(), 1);
}

void Xephyr::stopRepeatsOfHost() {
  hostConnection_.reset(xcb_connect(host_.display().c_str(), nullptr));
  const std::uint32_t off = XCB_AUTO_REPEAT_MODE_OFF;
  const auto cookie = xcb_change_keyboard_control_checked(hostConnection_.get(), XCB_KB_AUTO_REPEAT_MODE, &off);
  const XcbReply<xcb_generic_error_t> error{xcb_request_check(hostConnection_.get(), cookie)};
  if (error || xcb_connection_has_error(hostConnection_.get()))
    fatalError("the host's keys cannot be kept from repeating");
}

Xephyr::~Xephyr() {
  kill(process_, SIGTERM);
  waitpid(process_, nullptr, 0);
}

}  // namespace tavelle::x11::tests
