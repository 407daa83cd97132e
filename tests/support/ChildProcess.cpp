#include "tests/support/ChildProcess.h"

#include "platform/FatalError.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>

namespace tavelle::tests {
namespace {

struct Pipe {
  FileDescriptor reading;
  FileDescriptor writing;
};

Pipe makePipe() {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) fatalError("no pipe for a test");
  return {FileDescriptor{ends[0]}, FileDescriptor{ends[1]}};
}

[[noreturn]] void become(std::vector<char*>& arguments, int input, int output) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  dup2(input, STDIN_FILENO);
  dup2(output, STDOUT_FILENO);
  execvp(arguments[0], arguments.data());
  _exit(127);
}

}  // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& command) {
  std::vector<char*> arguments;
  for (const auto& each : command) arguments.push_back(const_cast<char*>(each.c_str()));
  arguments.push_back(nullptr);
  auto input = makePipe();
  auto output = makePipe();
  pid_ = fork();
  if (pid_ < 0) fatalError("no process for a test");
  if (pid_ == 0) become(arguments, input.reading.get(), output.writing.get());
  input_ = std::move(input.writing);
  output_ = std::move(output.reading);
}

ChildProcess::~ChildProcess() {
  if (pid_ < 0) return;
  closeInput();
  signal(SIGTERM);
  signal(SIGCONT);
  wait();
}

void ChildProcess::write(const std::string& text) const {
  for (std::size_t at = 0; at < text.size();) {
    const auto count = ::write(input_.get(), text.data() + at, text.size() - at);
    if (count < 0) fatalError(std::string{"a test could not write to a program: "} + std::strerror(errno));
    at += static_cast<std::size_t>(count);
  }
}

std::string ChildProcess::readLine() const {
  std::string line;
  char next = 0;
  while (read(output_.get(), &next, 1) == 1 && next != '\n') line += next;
  return line;
}

std::string ChildProcess::readAll() const {
  std::string text;
  std::array<char, 4096> buffer{};
  for (ssize_t count = 0; (count = read(output_.get(), buffer.data(), buffer.size())) > 0;) {
    text.append(buffer.data(), static_cast<std::size_t>(count));
  }
  return text;
}

void ChildProcess::signal(int number) const {
  kill(pid_, number);
}

int ChildProcess::wait() {
  int status = 0;
  waitpid(pid_, &status, 0);
  pid_ = -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace tavelle::tests
