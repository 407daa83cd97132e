#pragma once

#include "platform/linux/FileDescriptor.h"

namespace tavelle {

// The lock file that one running Tavelle a desktop holds, in the person's runtime folder: the session bus tells
// instances apart only for as long as there is one.
class InstanceLock {
 public:
  // False where another process holds it. Where no lock file can be made there is nothing to hold, and this is true.
  bool acquire();
  void release() { file_ = {}; }

 private:
  FileDescriptor file_;
};

}  // namespace tavelle
