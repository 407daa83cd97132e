#include "llm/JSON.h"

#include "platform/JSONText.h"
#include "platform/StrictJSON.h"
#include "platform/UTF8.h"

#include <simdjson.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <utility>

namespace tavelle {
namespace {

namespace dom = simdjson::dom;

constexpr int deepestNesting = 512;

// Up to here every whole number is a double, and is written out.
constexpr double largestExact = 9007199254740992.0;  // 2^53

// From here on the exponent form is the shorter one.
constexpr double longestWrittenOut = 1e24;

// With as few digits as read back equal. std::to_chars knows them at once, but on macOS it came after version 13.0.
Data shortestDecimal(double number) {
  std::array<char, 32> text;
  int digits = 0;
  do {
    std::snprintf(text.data(), text.size(), "%.*g", ++digits, number);
  } while (digits < std::numeric_limits<double>::max_digits10 && std::strtod(text.data(), nullptr) != number);
  return text.data();
}

// A whole number without exponent.
Data writtenOut(double number) {
  std::array<char, 32> text;
  std::snprintf(text.data(), text.size(), "%.0f", number);
  return text.data();
}

void writeNumber(double number, Data& out) {
  if (!std::isfinite(number)) throw JSONError{"Invalid number value (infinity or not a number) in JSON write."};
  const auto decimal = shortestDecimal(number);
  const bool mayBeWrittenOut = std::trunc(number) == number && std::abs(number) < longestWrittenOut;
  const auto whole = mayBeWrittenOut ? writtenOut(number) : decimal;
  out += std::abs(number) < largestExact || whole.size() <= decimal.size() ? whole : decimal;
}

void writeString(const std::string& text, Data& out) {
  if (!isUTF8(text)) throw JSONError{"The text is not valid Unicode, so it cannot be sent."};
  appendJSONString(out, text);
}

// The library's own writer does not always find the shortest number that reads back equal, and is slow with long texts.
void write(const JSON& value, Data& out) {
  if (value.is_number_float()) return writeNumber(value.get<double>(), out);
  if (value.is_string()) return writeString(value.get_ref<const std::string&>(), out);
  if (!value.is_structured()) {
    out += value.dump();
    return;
  }
  out += value.is_object() ? '{' : '[';
  bool isFirst = true;
  for (const auto& [key, member] : value.items()) {
    if (!std::exchange(isFirst, false)) out += ',';
    if (value.is_object()) {
      writeString(key, out);
      out += ':';
    }
    write(member, out);
  }
  out += value.is_object() ? '}' : ']';
}

JSONError notInFormat() {
  return JSONError{"The data couldn’t be read because it isn’t in the correct format."};
}

JSON valueOf(dom::element element) {
  switch (element.type()) {
    case dom::element_type::OBJECT: {
      auto object = JSON::object();
      for (const auto [key, member] : dom::object{element}) object[std::string{key}] = valueOf(member);
      return object;
    }
    case dom::element_type::ARRAY: {
      auto array = JSON::array();
      for (const auto member : dom::array{element}) array.push_back(valueOf(member));
      return array;
    }
    case dom::element_type::STRING:
      return std::string{std::string_view{element}};
    case dom::element_type::INT64:
      return std::int64_t{element};
    case dom::element_type::UINT64:
      return std::uint64_t{element};
    case dom::element_type::DOUBLE:
      return double{element};
    case dom::element_type::BOOL:
      return bool{element};
    case dom::element_type::NULL_VALUE:
      break;
  }
  return nullptr;
}

// A whole number beyond 64 bits is JSON too, but not for the fast reader.
JSON decodeUnusualNumbers(std::string_view text) {
  auto value = parseStrictJSON<JSON>(text, deepestNesting);
  if (!value.is_structured()) throw notInFormat();
  return value;
}

}  // namespace

Data encodeJSON(const JSON& value) {
  Data text;
  write(value, text);
  return text;
}

JSON decodeJSON(std::string_view text) {
  dom::parser parser;
  dom::element top;
  auto error = parser.allocate(text.size(), deepestNesting + 1);
  if (!error) error = parser.parse(text.data(), text.size()).get(top);
  if (error == simdjson::NUMBER_ERROR) return decodeUnusualNumbers(text);
  if (error || !(top.is_object() || top.is_array())) throw notInFormat();
  return valueOf(top);
}

}  // namespace tavelle
