#pragma once

#include <string_view>

namespace tavelle {

// Whether `bytes` are valid UTF-8. A NUL is.
bool isUTF8(std::string_view bytes);

}  // namespace tavelle
