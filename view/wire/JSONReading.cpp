#include "view/wire/JSONReading.h"

#include "view/wire/WireError.h"

namespace tavelle::view {
namespace {

void require(bool holds, const char* otherwise) {
  if (!holds) throw WireError{otherwise};
}

}  // namespace

JSON parseLine(std::string_view line) {
  auto json = JSON::parse(line, nullptr, false);
  const bool hasNUL = line.find('\0') != line.npos;  // which the library takes for the end
  require(!json.is_discarded() && !hasNUL, "a line is not JSON");
  return json;
}

std::string toLine(const JSON& json) {
  return json.dump(-1, ' ', false, JSON::error_handler_t::replace) + '\n';
}

std::uint64_t readNumber(const JSON& json, std::uint64_t largest) {
  require(json.is_number_unsigned() && json.get<std::uint64_t>() <= largest, "not a number in its range");
  return json.get<std::uint64_t>();
}

double readDouble(const JSON& json) {
  require(json.is_number(), "not a number");
  return json.get<double>();
}

const std::string& readString(const JSON& json) {
  require(json.is_string(), "not a string");
  return json.get_ref<const std::string&>();
}

const JSON& readArray(const JSON& json, std::size_t size) {
  require(json.is_array() && json.size() == size, "not an array of its length");
  return json;
}

const JSON& readObject(const JSON& json, std::size_t size) {
  require(json.is_object() && json.size() == size, "not an object of its members");
  return json;
}

const JSON& readMember(const JSON& object, const char* name) {
  const auto found = object.find(name);
  require(found != object.end(), "a member is missing");
  return *found;
}

}  // namespace tavelle::view
