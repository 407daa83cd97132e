#pragma once

#include <string>
#include <string_view>

namespace tavelle {

// `text` without leading and trailing members of the platform's whitespace-and-newlines set. Valid UTF-8 in and out.
std::string trimmingWhitespaceAndNewlines(std::string_view text);

}  // namespace tavelle
