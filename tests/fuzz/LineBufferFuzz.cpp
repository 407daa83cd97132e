// A stream of bytes from another process, in pieces of any size.

#include "view/wire/LineBuffer.h"

#include "tests/fuzz/Fuzz.h"
#include "view/wire/WireError.h"

#include <string>
#include <vector>

namespace tavelle::fuzz {
namespace {

// The lines that come out; ends with "too long" where the buffer says so.
std::vector<std::string> linesOf(Input stream, std::size_t limit, std::size_t pieceSize) {
  std::vector<std::string> lines;
  view::LineBuffer buffer{limit};
  try {
    while (!stream.isEmpty()) {
      buffer.append(stream.take(pieceSize));
      while (auto line = buffer.take()) lines.push_back(*std::move(line));
    }
  } catch (const view::WireError&) {
    lines.emplace_back("too long");
  }
  return lines;
}

std::vector<std::string> expectedLines(std::string_view stream, std::size_t limit) {
  std::vector<std::string> lines;
  while (!stream.empty()) {
    const auto end = std::min(stream.find('\n'), stream.size());
    if (end > limit) return lines.emplace_back("too long"), lines;
    if (end == stream.size()) break;
    lines.emplace_back(stream.substr(0, end));
    stream.remove_prefix(end + 1);
  }
  return lines;
}

void run(Input input) {
  const std::size_t limit = input.choice(64);
  const std::size_t pieceSize = 1 + input.choice(64);
  require(linesOf(input, limit, pieceSize) == expectedLines(input.rest(), limit), "the lines are others");
}

}  // namespace
}  // namespace tavelle::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tavelle::fuzz::run({data, size});
  return 0;
}
