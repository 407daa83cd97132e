#pragma once

#include <string>

namespace tavelle {

// An owned byte buffer. Any bytes, NUL included; no encoding is implied.
using Data = std::string;

}  // namespace tavelle
