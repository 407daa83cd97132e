#pragma once

#include <nlohmann/json.hpp>

#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

namespace tavelle::view {

using JSON = nlohmann::json;

// One line of JSON from the other side, and from it. Each throws WireError where the value is anything else.
JSON parseLine(std::string_view line);
std::string toLine(const JSON& json);

std::uint64_t readNumber(const JSON& json, std::uint64_t largest = std::numeric_limits<std::uint64_t>::max());
double readDouble(const JSON& json);
const std::string& readString(const JSON& json);
const JSON& readArray(const JSON& json, std::size_t size);
// An object with this many members, and the one that is named.
const JSON& readObject(const JSON& json, std::size_t size);
const JSON& readMember(const JSON& object, const char* name);

}  // namespace tavelle::view
