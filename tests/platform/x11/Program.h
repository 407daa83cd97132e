#pragma once

#include "platform/linux/GObjectPtr.h"

#include <gio/gio.h>

#include <string>
#include <vector>

namespace tavelle::x11::tests {

// A real program that runs beside the test, which serves its main loop meanwhile.
class Program {
 public:
  // What the program writes, having been given `input`. Ends the test program where it cannot be started.
  static std::string outputOf(const std::vector<std::string>& command, const std::string& input = {});

  // Starts a program that goes on running; it has read all of `input` when this returns. It is ended with the object.
  explicit Program(const std::vector<std::string>& command, const std::string& input = {});
  ~Program();
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

 private:
  GObjectPtr<GSubprocess> process_;
};

}  // namespace tavelle::x11::tests
