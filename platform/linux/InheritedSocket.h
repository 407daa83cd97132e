#pragma once

#include "platform/linux/FileDescriptor.h"

#include <sys/stat.h>

namespace tavelle {

// A program that Tavelle starts as a part of itself has one end of a socket pair as this descriptor.
constexpr int inheritedDescriptor = 3;

// That end; none in a program that somebody else has started.
inline FileDescriptor inheritedSocket() {
  struct stat status {};
  const bool isThere = fstat(inheritedDescriptor, &status) == 0 && S_ISSOCK(status.st_mode);
  return FileDescriptor{isThere ? inheritedDescriptor : -1};
}

}  // namespace tavelle
