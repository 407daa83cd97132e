#include "platform/linux/LinkPrivacy.h"

#include <glib.h>

#include <algorithm>
#include <deque>
#include <string>
#include <string_view>

namespace tavelle {

void keepLinksPrivate(std::span<char*> arguments) {
  static std::deque<std::string> copies;  // lives as long as the arguments did
  for (char*& argument : arguments.subspan(std::min<std::size_t>(1, arguments.size()))) {
    const std::string_view given{argument};
    if (given.starts_with('-')) continue;
    char* const copy = copies.emplace_back(given).data();
    std::fill_n(argument, given.size(), '\0');
    argument = copy;
  }
  g_unsetenv("G_DBUS_DEBUG");
  g_setenv("GIO_USE_VFS", "local", true);
}

}  // namespace tavelle
