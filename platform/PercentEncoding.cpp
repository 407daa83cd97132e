#include "platform/PercentEncoding.h"

#include "platform/UTF8.h"

namespace tavelle {
namespace {

int valueOfHexDigit(char digit) {
  return digit <= '9' ? digit - '0' : (digit | 0x20) - 'a' + 10;
}

}  // namespace

std::optional<std::string> removingPercentEncoding(std::string_view text) {
  std::string decoded;
  decoded.reserve(text.size());
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] != '%') {
      decoded += text[at];
      continue;
    }
    decoded += static_cast<char>(valueOfHexDigit(text[at + 1]) * 16 + valueOfHexDigit(text[at + 2]));
    at += 2;
  }
  return isUTF8(decoded) ? std::optional{std::move(decoded)} : std::nullopt;
}

}  // namespace tavelle
