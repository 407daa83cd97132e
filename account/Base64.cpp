#include "account/Base64.h"

#include <cstdint>

namespace tavelle {
namespace {

constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

}  // namespace

std::optional<Data> decodeBase64(std::string_view text) {
  if (text.size() % 4 != 0) return std::nullopt;
  // Two at most: a fourth of a quantum says less than a byte.
  const auto padding = text.ends_with("==") ? 2U : text.ends_with('=') ? 1U : 0U;
  text.remove_suffix(padding);

  Data bytes;
  bytes.reserve(text.size() / 4 * 3 + 2);
  std::uint32_t bits = 0;
  int count = 0;  // of the bits that are not written yet
  for (const char character : text) {
    const auto value = alphabet.find(character);
    if (value == std::string_view::npos) return std::nullopt;
    bits = bits << 6 | static_cast<std::uint32_t>(value);
    count += 6;
    if (count < 8) continue;
    count -= 8;
    bytes += static_cast<char>(bits >> count & 0xFF);
  }
  return bytes;
}

}  // namespace tavelle
