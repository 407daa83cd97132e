// The lines that a window's renderer hears.

#include "platform/linux/WindowLine.h"
#include "tests/fuzz/Fuzz.h"
#include "view/wire/BatchLine.h"
#include "view/wire/JSONReading.h"
#include "view/wire/WireError.h"

#include <optional>

namespace tavelle::fuzz {
namespace {

using Order = decltype(decodeOrder(std::string_view{}));

std::optional<Order> decoded(std::string_view line) {
  try {
    return decodeOrder(line);
  } catch (const view::WireError&) {
    return std::nullopt;
  }
}

std::string encoded(const view::Batch& batch) {
  return view::encodeBatch(batch);
}
template <typename OfTheWindow>
std::string encoded(const OfTheWindow& order) {
  return encodeLine(order);
}

void run(std::string_view line) {
  const auto order = decoded(line);
  if (!order) return;
  require(line.find('\0') == line.npos, "the line has an end before its end");
  const auto again = std::visit([](const auto& one) { return encoded(one); }, *order);
  require(isUTF8(again) && again.find('\n') == again.size() - 1, "an order is one line of text");
  require(view::parseLine(again) == view::parseLine(line), "something in the line was not read");
  require(decoded(again) == order, "an order does not read back");
}

}  // namespace
}  // namespace tavelle::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tavelle::fuzz::run(tavelle::fuzz::Input{data, size}.rest());
  return 0;
}
