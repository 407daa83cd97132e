#include "llm/JSON.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <utility>

namespace tavelle {
namespace {

constexpr int deepestNesting = 512;

// Up to here every whole number is a double, and is written out; beyond, the exponent form is the shorter one.
constexpr double largestWrittenOut = 9007199254740992.0;  // 2^53

void writeNumber(double number, Data& out) {
  if (!std::isfinite(number)) throw JSONError{"Invalid number value (infinity or not a number) in JSON write."};
  const bool isWhole = std::trunc(number) == number && std::abs(number) < largestWrittenOut;
  std::array<char, 32> digits;
  char* const end = digits.data() + digits.size();
  const auto result = isWhole ? std::to_chars(digits.data(), end, static_cast<std::int64_t>(number))
                              : std::to_chars(digits.data(), end, number);
  out.append(digits.data(), result.ptr);
}

// The library's own writer does not always find the shortest number that reads back equal; all else is left to it.
void write(const JSON& value, Data& out) {
  if (value.is_number_float()) return writeNumber(value.get<double>(), out);
  if (!value.is_structured()) {
    out += value.dump();
    return;
  }
  out += value.is_object() ? '{' : '[';
  bool isFirst = true;
  for (const auto& [key, member] : value.items()) {
    if (!std::exchange(isFirst, false)) out += ',';
    if (value.is_object()) out += JSON(key).dump() + ':';
    write(member, out);
  }
  out += value.is_object() ? '}' : ']';
}

}  // namespace

Data encodeJSON(const JSON& value) {
  Data text;
  try {
    write(value, text);
  } catch (const JSON::type_error&) {
    throw JSONError{"The text is not valid Unicode, so it cannot be sent."};
  }
  return text;
}

JSON decodeJSON(std::string_view text) {
  bool isTooDeep = false;
  const auto guard = [&isTooDeep](int depth, JSON::parse_event_t, const JSON&) {
    isTooDeep = isTooDeep || depth > deepestNesting;
    return !isTooDeep;
  };
  auto value = JSON::parse(text, guard, /*allow_exceptions=*/false);
  if (isTooDeep || !value.is_structured()) {
    throw JSONError{"The data couldn’t be read because it isn’t in the correct format."};
  }
  return value;
}

}  // namespace tavelle
