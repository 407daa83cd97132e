// Any JSON from outside: answers, stored profiles, the claims of a token.

#include "llm/JSON.h"
#include "tests/fuzz/Fuzz.h"

#include <optional>

namespace tavelle::fuzz {
namespace {

std::optional<JSON> decoded(std::string_view text) {
  try {
    return decodeJSON(text);
  } catch (const JSONError& error) {
    require(isUTF8(error.errorDescription()), "words that cannot be shown");
    return std::nullopt;
  }
}

// Another reader, which takes any top, any depth, and a byte order mark.
JSON asAnotherReads(std::string_view text) {
  const bool hasNUL = text.find('\0') != text.npos;  // which it would take for the end
  return hasNUL ? JSON(JSON::value_t::discarded) : JSON::parse(text, nullptr, false);
}

bool mayBeRefused(std::string_view text) {
  constexpr auto deepestNesting = 512;
  const auto openings = std::count_if(text.begin(), text.end(), [](char c) { return c == '[' || c == '{'; });
  return text.starts_with("\xEF\xBB\xBF") || openings > deepestNesting || !asAnotherReads(text).is_structured();
}

void run(std::string_view text) {
  const auto value = decoded(text);
  if (!value) return require(mayBeRefused(text), "it is JSON, and is refused");
  require(value->is_structured(), "the top is neither an object nor an array");
  require(value->dump() == asAnotherReads(text).dump(), "another reader reads something else");
  const Data written = encodeJSON(*value);
  require(isUTF8(written), "what is written is not UTF-8");
  require(decoded(written) == value, "what is written does not read back equal");
}

}  // namespace
}  // namespace tavelle::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tavelle::fuzz::run(tavelle::fuzz::Input{data, size}.rest());
  return 0;
}
