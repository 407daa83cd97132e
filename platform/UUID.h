#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tavelle {

// A 128-bit identifier (RFC 9562), a plain value.
class UUID {
 public:
  // The nil UUID, all zero.
  UUID() = default;

  // A fresh random one (version 4), from the system's random source.
  static UUID random();

  // Reads the canonical form, 8-4-4-4-12 hexadecimal digits in either case; anything else is no UUID.
  static std::optional<UUID> parse(std::string_view text);

  // The canonical hyphenated form, in upper case.
  std::string uuidString() const;

  auto operator<=>(const UUID&) const = default;

 private:
  std::array<std::uint8_t, 16> bytes_{};
};

}  // namespace tavelle
