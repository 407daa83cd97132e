#pragma once

#include "platform/linux/FileDescriptor.h"

#include <sys/types.h>

#include <string>
#include <vector>

namespace tavelle::tests {

// A program that runs for the life of this object, and no longer than the test. What it prints can be read; its errors
// go where the test's go. Not copied, not moved.
class ChildProcess {
 public:
  // The program, found as a shell finds it, and its arguments.
  explicit ChildProcess(const std::vector<std::string>& command);
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  void write(const std::string& text) const;
  void closeInput() { input_ = {}; }

  // The next line that it prints, without its end; what is left where it ends before.
  std::string readLine() const;
  std::string readAll() const;

  void signal(int number) const;

  // Waits for its end; the exit status, or -1 where a signal ended it.
  int wait();

 private:
  pid_t pid_ = -1;
  FileDescriptor input_;
  FileDescriptor output_;
};

}  // namespace tavelle::tests
