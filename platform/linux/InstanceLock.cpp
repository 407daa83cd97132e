#include "platform/linux/InstanceLock.h"

#include <fcntl.h>
#include <glib.h>
#include <sys/file.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <string>
#include <utility>

namespace tavelle {
namespace {

// A desktop is an X display: someone who nests one desktop in another may run Tavelle in both. ":0" and ":0.0" are one.
std::string lockFile() {
  const char* const variable = std::getenv("DISPLAY");
  std::string display = variable ? variable : "";
  if (const auto screen = display.find('.', std::min(display.rfind(':'), display.size()));
      screen != std::string::npos) {
    display.resize(screen);
  }
  for (char& c : display) {
    if (!g_ascii_isalnum(c)) c = '-';
  }
  return std::string{g_get_user_runtime_dir()} + "/tavelle" + display + ".lock";
}

}  // namespace

bool InstanceLock::acquire() {
  FileDescriptor file{open(lockFile().c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600)};
  if (!file) return true;
  if (flock(file.get(), LOCK_EX | LOCK_NB) != 0) return errno != EWOULDBLOCK;
  file_ = std::move(file);
  return true;
}

}  // namespace tavelle
