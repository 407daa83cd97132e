#pragma once

#include "view/HostOperation.h"

#include <string>

namespace tavelle::view {

// A step in a line that can be read: `create 3 text text="None"`. For tests: it tells what the fields hold.
std::string describe(const HostOperation& operation);

}  // namespace tavelle::view
