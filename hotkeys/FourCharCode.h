#pragma once

#include <algorithm>
#include <cstdint>
#include <string_view>

namespace tavelle {

// The first four bytes of `text`, the first in the most significant place; a shorter text gives a smaller value.
constexpr std::uint32_t fourCharCode(std::string_view text) {
  std::uint32_t code = 0;
  for (const char byte : text.substr(0, 4)) code = code * 256 + static_cast<unsigned char>(byte);
  return code;
}

}  // namespace tavelle
