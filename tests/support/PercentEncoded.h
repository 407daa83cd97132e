#pragma once

#include <string>
#include <string_view>

namespace tavelle::tests {

// Every octet percent-encoded (RFC 3986, section 2.1).
inline std::string percentEncoded(std::string_view bytes) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string encoded;
  for (const char byte : bytes) {
    const auto octet = static_cast<unsigned char>(byte);
    encoded.append({'%', digits[octet >> 4], digits[octet & 0xF]});
  }
  return encoded;
}

}  // namespace tavelle::tests
