#include "platform/linux/x11/TextEncoding.h"

namespace tavelle::x11 {

std::string utf8FromLatin1(std::string_view latin1) {
  std::string utf8;
  utf8.reserve(latin1.size());
  for (const char character : latin1) {
    const auto code = static_cast<unsigned char>(character);
    if (code < 0x80) {
      utf8 += character;
    } else {
      utf8 += static_cast<char>(0xC0 | (code >> 6));
      utf8 += static_cast<char>(0x80 | (code & 0x3F));
    }
  }
  return utf8;
}

std::optional<std::string> latin1FromUTF8(std::string_view utf8) {
  std::string latin1(utf8.size(), '\0');
  char* out = latin1.data();
  for (std::size_t i = 0; i < utf8.size(); ++i) {
    const auto lead = static_cast<unsigned char>(utf8[i]);
    if (lead < 0x80) {
      *out++ = utf8[i];
    } else if (lead <= 0xC3 && i + 1 < utf8.size()) {  // U+0080 to U+00FF
      const auto trail = static_cast<unsigned char>(utf8[++i]);
      *out++ = static_cast<char>(((lead & 0x03) << 6) | (trail & 0x3F));
    } else {
      return std::nullopt;
    }
  }
  latin1.resize(static_cast<std::size_t>(out - latin1.data()));
  return latin1;
}

}  // namespace tavelle::x11
