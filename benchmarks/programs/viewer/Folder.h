#pragma once

#include "platform/linux/FileDescriptor.h"

#include <functional>
#include <string>

namespace tavelle::bench {

// Sees that a file in a folder was replaced by another that was written beside it.
class Folder {
 public:
  explicit Folder(const std::string& path);

  int descriptor() const { return descriptor_.get(); }

  // Calls `onReplaced` for each file since the last time.
  void read(const std::function<void()>& onReplaced) const;

 private:
  FileDescriptor descriptor_;
};

}  // namespace tavelle::bench
