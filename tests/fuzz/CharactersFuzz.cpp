// Text: what UTF-8 is, where a character ends, what is trimmed.

#include "llm/Trimming.h"
#include "platform/FirstCharacters.h"
#include "platform/UTF8.h"
#include "tests/fuzz/Fuzz.h"

#include <glib.h>

namespace tavelle::fuzz {
namespace {

// GLib's takes NUL for the end.
bool isUTF8ForGLib(std::string_view bytes) {
  while (true) {
    const auto end = std::min(bytes.find('\0'), bytes.size());
    if (!g_utf8_validate(bytes.data(), static_cast<gssize>(end), nullptr)) return false;
    if (end == bytes.size()) return true;
    bytes.remove_prefix(end + 1);
  }
}

void cut(std::string_view text) {
  require(firstCharacters(text, 0).empty(), "no characters are something");
  std::size_t size = 0;
  for (std::size_t count = 1; size < text.size(); ++count) {
    const auto first = firstCharacters(text, count);
    require(text.starts_with(first), "not what the text begins with");
    require(first.size() > size, "one more character is no more");
    require(!isUTF8(text) || isUTF8(first), "a character is cut");
    size = first.size();
  }
}

void trim(std::string_view text) {
  const auto trimmed = trimmingWhitespaceAndNewlines(text);
  require(text.find(trimmed) != std::string_view::npos, "not a part of the text");
  require(isTrimmed(trimmed) && trimmingWhitespaceAndNewlines(trimmed) == trimmed, "there is more to trim");
  require(!isUTF8(text) || isUTF8(trimmed), "a character is cut");
}

void run(std::string_view text) {
  require(isUTF8(text) == isUTF8ForGLib(text), "another reader judges otherwise");
  cut(text.substr(0, 512));  // its cost is the square of the length
  trim(text);
}

}  // namespace
}  // namespace tavelle::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tavelle::fuzz::run(tavelle::fuzz::Input{data, size}.rest());
  return 0;
}
