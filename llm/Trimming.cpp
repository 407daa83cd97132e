#include "llm/Trimming.h"

#include <algorithm>
#include <array>

namespace tavelle {
namespace {

using namespace std::string_view_literals;

// The set in UTF-8: U+0009 to U+000D, U+0020, U+0085, U+00A0, U+1680, U+2000 to U+200B, U+2028, U+2029, U+202F, U+205F,
// U+3000. No member's bytes begin or end another's, so the set can be matched from either side.
constexpr std::array whitespaceAndNewlines{
    "\t"sv,           "\n"sv,           "\v"sv,           "\f"sv,           "\r"sv,           " "sv,
    "\xC2\x85"sv,     "\xC2\xA0"sv,     "\xE1\x9A\x80"sv, "\xE2\x80\x80"sv, "\xE2\x80\x81"sv, "\xE2\x80\x82"sv,
    "\xE2\x80\x83"sv, "\xE2\x80\x84"sv, "\xE2\x80\x85"sv, "\xE2\x80\x86"sv, "\xE2\x80\x87"sv, "\xE2\x80\x88"sv,
    "\xE2\x80\x89"sv, "\xE2\x80\x8A"sv, "\xE2\x80\x8B"sv, "\xE2\x80\xA8"sv, "\xE2\x80\xA9"sv, "\xE2\x80\xAF"sv,
    "\xE2\x81\x9F"sv, "\xE3\x80\x80"sv,
};

template <typename Matches>
std::size_t lengthOfMember(Matches matches) {
  const auto* const found = std::find_if(whitespaceAndNewlines.begin(), whitespaceAndNewlines.end(), matches);
  return found == whitespaceAndNewlines.end() ? 0 : found->size();
}

}  // namespace

std::string trimmingWhitespaceAndNewlines(std::string_view text) {
  while (const auto length = lengthOfMember([text](auto member) { return text.starts_with(member); })) {
    text.remove_prefix(length);
  }
  while (const auto length = lengthOfMember([text](auto member) { return text.ends_with(member); })) {
    text.remove_suffix(length);
  }
  return std::string{text};
}

}  // namespace tavelle
