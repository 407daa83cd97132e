#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace tavelle::view {

// Cuts a stream of bytes into lines, however the bytes arrive. After each piece, all lines are taken.
class LineBuffer {
 public:
  // Longer lines than `limit` bytes are an error: memory is not the other side's to take.
  explicit LineBuffer(std::size_t limit) : limit_(limit) {}

  void append(std::string_view bytes);

  // The next whole line, without its newline. Throws WireError.
  std::optional<std::string> take();

 private:
  std::size_t limit_;
  std::string bytes_;
  std::size_t start_ = 0;     // of the next line
  std::size_t searched_ = 0;  // there is no newline from start_ to here
};

}  // namespace tavelle::view
