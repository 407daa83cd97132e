#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tavelle::tests {

inline constexpr std::string_view base64Alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
inline constexpr std::string_view base64URLAlphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";

// RFC 4648, without padding: what the product only ever reads.
inline std::string unpaddedBase64(std::string_view bytes, std::string_view alphabet) {
  std::string text;
  std::uint32_t bits = 0;
  int count = 0;
  for (const char byte : bytes) {
    bits = bits << 8 | static_cast<unsigned char>(byte);
    for (count += 8; count >= 6; count -= 6) text += alphabet[bits >> (count - 6) & 63];
  }
  if (count > 0) text += alphabet[bits << (6 - count) & 63];
  return text;
}

}  // namespace tavelle::tests
