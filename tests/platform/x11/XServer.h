#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace tavelle::x11::tests {

// An X server of the test's own, usually with no screen to be seen: started on a free display, which becomes $DISPLAY
// of this process, and ended with the object. It ends with the process too, should that crash.
class XServer {
 public:
  // Ends the test program where no server starts.
  explicit XServer(const std::string& program = "Xvfb", const std::vector<std::string>& arguments = {});
  ~XServer();
  XServer(const XServer&) = delete;
  XServer& operator=(const XServer&) = delete;

  // The name to connect to, as in ":7".
  const std::string& display() const { return display_; }

  // Ends the server now, as when the person's session ends.
  void kill();

 private:
  pid_t process_ = -1;
  std::string display_;
};

}  // namespace tavelle::x11::tests
