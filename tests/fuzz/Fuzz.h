#pragma once

#include "platform/UTF8.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <source_location>
#include <string>
#include <string_view>

namespace tavelle::fuzz {

// The bytes of one run, taken from the front.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : bytes_(reinterpret_cast<const char*>(data), size) {}

  // One of `count` things by the next byte, so that a seed can name it by a digit; the first where nothing is left.
  unsigned choice(unsigned count) {
    const auto byte = take(1);
    return byte.empty() ? 0 : (static_cast<unsigned char>(byte.front()) - '0' + 256U) % 256U % count;
  }

  // The next `size` bytes, or what is left.
  std::string_view take(std::size_t size) {
    const auto taken = bytes_.substr(0, size);
    bytes_.remove_prefix(taken.size());
    return taken;
  }

  // Up to the next `end`, which is taken too.
  std::string_view takeUntil(char end) {
    const auto taken = take(bytes_.find(end));
    take(1);
    return taken;
  }

  bool isEmpty() const { return bytes_.empty(); }
  std::string_view rest() const { return bytes_; }

 private:
  std::string_view bytes_;
};

// A finding where it does not hold.
inline void require(bool holds, const char* otherwise,
                    const std::source_location& where = std::source_location::current()) {
  if (holds) return;
  std::fprintf(stderr, "%s:%u: %s\n", where.file_name(), static_cast<unsigned>(where.line()), otherwise);
  std::abort();
}

// Valid UTF-8 whatever the bytes are, and these bytes where they are valid already.
inline std::string textOf(std::string_view bytes) {
  std::string text{bytes};
  if (!isUTF8(text)) {
    std::transform(text.begin(), text.end(), text.begin(), [](char c) { return static_cast<char>(c & 0x7F); });
  }
  return text;
}

// Whether there is no blank at either end that anybody would see.
inline bool isTrimmed(std::string_view text) {
  constexpr std::string_view blanks = " \t\r\n";
  return text.empty() || (blanks.find(text.front()) == blanks.npos && blanks.find(text.back()) == blanks.npos);
}

}  // namespace tavelle::fuzz
