#include "platform/UUID.h"

#include <charconv>
#include <cstddef>
#include <random>

namespace tavelle {
namespace {

constexpr std::string_view shape = "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx";

}  // namespace

UUID UUID::random() {
  std::random_device source;
  std::uniform_int_distribution<unsigned> byte{0, 255};
  UUID uuid;
  for (auto& value : uuid.bytes_) value = static_cast<std::uint8_t>(byte(source));
  uuid.bytes_[6] = static_cast<std::uint8_t>((uuid.bytes_[6] & 0x0F) | 0x40);  // version 4
  uuid.bytes_[8] = static_cast<std::uint8_t>((uuid.bytes_[8] & 0x3F) | 0x80);  // RFC 9562 variant
  return uuid;
}

std::optional<UUID> UUID::parse(std::string_view text) {
  if (text.size() != shape.size()) return std::nullopt;
  UUID uuid;
  std::size_t next = 0;
  for (std::size_t at = 0; at < text.size();) {
    if (shape[at] == '-') {
      if (text[at++] != '-') return std::nullopt;
      continue;
    }
    const char* const digits = text.data() + at;
    const auto [end, error] = std::from_chars(digits, digits + 2, uuid.bytes_[next++], 16);
    if (error != std::errc{} || end != digits + 2) return std::nullopt;
    at += 2;
  }
  return uuid;
}

std::string UUID::uuidString() const {
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string text;
  text.reserve(shape.size());
  for (const auto byte : bytes_) {
    if (shape[text.size()] == '-') text += '-';
    text += digits[byte >> 4];
    text += digits[byte & 0x0F];
  }
  return text;
}

}  // namespace tavelle
