#pragma once

#include "platform/Data.h"

#include <optional>
#include <string_view>

namespace tavelle {

// Reads standard base64 (RFC 4648, section 4). None for anything else: a length that is no multiple of four, a
// character of no meaning, padding anywhere but at the end.
std::optional<Data> decodeBase64(std::string_view text);

}  // namespace tavelle
