#pragma once

#include <string_view>

namespace tavelle {

// Reads all of `text` with the JSON library, `Value` being its kind of value. A discarded value for what is no JSON,
// for what is nested deeper than `deepest`, and for text with a NUL, which the library takes for the end.
template <typename Value>
Value parseStrictJSON(std::string_view text, int deepest) {
  constexpr auto none = Value::value_t::discarded;
  if (text.find('\0') != text.npos) return none;
  bool isTooDeep = false;
  const auto guard = [&isTooDeep, deepest](int depth, typename Value::parse_event_t, const Value&) {
    isTooDeep = isTooDeep || depth > deepest;
    return !isTooDeep;
  };
  auto value = Value::parse(text, guard, /*allow_exceptions=*/false);
  if (isTooDeep) return none;
  return value;
}

}  // namespace tavelle
