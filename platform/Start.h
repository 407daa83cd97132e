#pragma once

#include "platform/Platform.h"

#include <memory>
#include <span>
#include <variant>

namespace tavelle {

// The platform of the system that the program is built for, or the exit status of a process that has nothing more to
// do. `arguments` are main()'s. The backend that is linked in defines it.
std::variant<std::unique_ptr<Platform>, int> startPlatform(std::span<char*> arguments);

}  // namespace tavelle
