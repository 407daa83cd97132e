// The lines that a window's renderer says.

#include "platform/linux/WindowLine.h"
#include "tests/fuzz/Fuzz.h"
#include "view/wire/EventLine.h"
#include "view/wire/JSONReading.h"
#include "view/wire/WireError.h"

#include <optional>

namespace tavelle::fuzz {
namespace {

using Report = decltype(decodeReport(std::string_view{}));

std::optional<Report> decoded(std::string_view line) {
  try {
    return decodeReport(line);
  } catch (const view::WireError&) {
    return std::nullopt;
  }
}

std::string encoded(const view::Event& event) {
  return view::encodeEvent(event);
}
template <typename OfTheWindow>
std::string encoded(const OfTheWindow& report) {
  return encodeLine(report);
}

void run(std::string_view line) {
  const auto report = decoded(line);
  if (!report) return;
  require(line.find('\0') == line.npos, "the line has an end before its end");
  const auto again = std::visit([](const auto& one) { return encoded(one); }, *report);
  require(isUTF8(again) && again.find('\n') == again.size() - 1, "a report is one line of text");
  require(view::parseLine(again) == view::parseLine(line), "something in the line was not read");
  require(decoded(again) == report, "a report does not read back");
}

}  // namespace
}  // namespace tavelle::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tavelle::fuzz::run(tavelle::fuzz::Input{data, size}.rest());
  return 0;
}
