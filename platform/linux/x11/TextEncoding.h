#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tavelle::x11 {

std::string utf8FromLatin1(std::string_view latin1);

// No value where a character of `utf8`, which must be valid, is not in Latin-1.
std::optional<std::string> latin1FromUTF8(std::string_view utf8);

}  // namespace tavelle::x11
