#include "platform/UTF8.h"

#include <utf8proc.h>

namespace tavelle {

bool isUTF8(std::string_view bytes) {
  const auto* at = reinterpret_cast<const utf8proc_uint8_t*>(bytes.data());
  auto left = static_cast<utf8proc_ssize_t>(bytes.size());
  while (left > 0) {
    utf8proc_int32_t codePoint = 0;
    const auto length = utf8proc_iterate(at, left, &codePoint);
    if (length < 0) return false;
    at += length;
    left -= length;
  }
  return true;
}

}  // namespace tavelle
