#pragma once

#include "platform/Data.h"
#include "platform/LocalizedError.h"

#include <nlohmann/json.hpp>

#include <string>
#include <string_view>
#include <utility>

namespace tavelle {

using JSON = nlohmann::json;

// Text that is no JSON, or a value that cannot be written as JSON.
class JSONError : public LocalizedError {
 public:
  explicit JSONError(std::string description) : description_(std::move(description)) {}
  std::string errorDescription() const override { return description_; }

 private:
  std::string description_;
};

// Writes `value` as compact UTF-8 JSON (RFC 8259). Numbers are in the shortest form that reads back equal; one
// without a fraction is written without one. Throws JSONError
// for strings that are not valid UTF-8 and for numbers that are not finite.
Data encodeJSON(const JSON& value);

// Reads a JSON text whose top is an object or an array, nested no deeper than 512. Throws JSONError for anything else.
JSON decodeJSON(std::string_view text);

}  // namespace tavelle
