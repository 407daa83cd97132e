#pragma once

#include "platform/linux/FileDescriptor.h"
#include "platform/linux/GObjectPtr.h"
#include "platform/linux/GSourcePtr.h"

#include <gio/gio.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace tavelle::tests {

// A program that runs beside the test, which serves its main loop meanwhile. It ends with the object, and with the test
// program.
class Program {
 public:
  // `environment` is added to the test's own; an empty value unsets a variable. Ends the test program where it cannot
  // be started.
  explicit Program(const std::vector<std::string>& command, const std::map<std::string, std::string>& environment = {});
  ~Program();
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  // Serves the main loop until the program has written `text`, to its standard output or error.
  bool hasWritten(const std::string& text);
  // What it has written so far.
  const std::string& output() const { return output_; }

  // Serves the main loop until the program has ended. The exit status; 1000 and the signal's number where a signal
  // ended it.
  int exitStatus();
  bool isRunning() const { return !*hasEnded_; }

  void signal(int number);
  int processID() const;

 private:
  void readOutput();

  GObjectPtr<GSubprocess> process_;
  FileDescriptor pipe_;
  GSourcePtr reader_;
  std::string output_;
  bool isOutputOver_ = false;
  std::shared_ptr<bool> hasEnded_ = std::make_shared<bool>(false);
};

}  // namespace tavelle::tests
