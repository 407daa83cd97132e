#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tavelle {

// `text` with each percent-encoded octet (RFC 3986, section 2.1) in its place; `text` has only well-formed ones. None
// where the outcome is not UTF-8.
std::optional<std::string> removingPercentEncoding(std::string_view text);

}  // namespace tavelle
