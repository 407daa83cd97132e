#pragma once

#include <string_view>

namespace tavelle {

// Whether `bytes` are valid UTF-8 (RFC 3629); NUL is a character like any other.
bool isUTF8(std::string_view bytes);

}  // namespace tavelle
