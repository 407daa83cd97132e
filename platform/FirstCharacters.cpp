#include "platform/FirstCharacters.h"

#include <utf8proc.h>

namespace tavelle {
namespace {

struct CodePoint {
  utf8proc_int32_t value;
  std::size_t length;
};

CodePoint codePointAt(std::string_view text, std::size_t at) {
  const auto* const bytes = reinterpret_cast<const utf8proc_uint8_t*>(text.data()) + at;
  utf8proc_int32_t value = 0;
  const auto length = utf8proc_iterate(bytes, static_cast<utf8proc_ssize_t>(text.size() - at), &value);
  constexpr utf8proc_int32_t replacementCharacter = 0xFFFD;
  return length > 0 ? CodePoint{value, static_cast<std::size_t>(length)} : CodePoint{replacementCharacter, 1};
}

}  // namespace

std::string_view firstCharacters(std::string_view text, std::size_t count) {
  if (text.empty() || count == 0) return {};
  auto previous = codePointAt(text, 0);
  utf8proc_int32_t state = 0;
  std::size_t at = previous.length;
  while (at < text.size()) {
    const auto next = codePointAt(text, at);
    if (utf8proc_grapheme_break_stateful(previous.value, next.value, &state) && --count == 0) break;
    previous = next;
    at += next.length;
  }
  return text.substr(0, at);
}

}  // namespace tavelle
