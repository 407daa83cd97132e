#include "Folder.h"

#include <sys/inotify.h>
#include <unistd.h>

#include <array>

namespace tavelle::bench {

Folder::Folder(const std::string& path) : descriptor_(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
  inotify_add_watch(descriptor_.get(), path.c_str(), IN_MOVED_TO);
}

void Folder::read(const std::function<void()>& onReplaced) const {
  alignas(inotify_event) std::array<char, 4096> events;
  ssize_t count = 0;
  while ((count = ::read(descriptor_.get(), events.data(), events.size())) > 0) {
    for (ssize_t at = 0; at < count;) {
      const auto& event = reinterpret_cast<const inotify_event&>(events[static_cast<std::size_t>(at)]);
      at += static_cast<ssize_t>(sizeof event + event.len);
      onReplaced();
    }
  }
}

}  // namespace tavelle::bench
