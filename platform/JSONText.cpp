#include "platform/JSONText.h"

#include <array>
#include <cstddef>

namespace tavelle {
namespace {

// By byte: whether it stands in a string as it is.
constexpr auto isPlain = [] {
  std::array<bool, 256> plain{};
  for (std::size_t byte = 0x20; byte < plain.size(); ++byte) plain[byte] = byte != '"' && byte != '\\';
  return plain;
}();

// From `begin` on.
std::size_t plainLength(std::string_view text, std::size_t begin) {
  std::size_t end = begin;
  while (end < text.size() && isPlain[static_cast<unsigned char>(text[end])]) ++end;
  return end - begin;
}

// The letter behind the backslash; 'u' where the character has no short form.
char shortForm(char c) {
  switch (c) {
    case '\b':
      return 'b';
    case '\f':
      return 'f';
    case '\n':
      return 'n';
    case '\r':
      return 'r';
    case '\t':
      return 't';
    case '"':
    case '\\':
      return c;
    default:
      return 'u';
  }
}

void appendEscaped(std::string& json, char c) {
  constexpr const char* digits = "0123456789abcdef";
  const char form = shortForm(c);
  const std::array escaped{'\\', form, '0', '0', digits[(c >> 4) & 0xF], digits[c & 0xF]};
  json.append(escaped.data(), form == 'u' ? escaped.size() : 2);
}

}  // namespace

void appendJSONString(std::string& json, std::string_view text) {
  json += '"';
  for (std::size_t at = 0; at < text.size(); ++at) {
    const auto plain = plainLength(text, at);
    json.append(text, at, plain);
    at += plain;
    if (at < text.size()) appendEscaped(json, text[at]);
  }
  json += '"';
}

}  // namespace tavelle
