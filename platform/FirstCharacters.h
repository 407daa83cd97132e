#pragma once

#include <cstddef>
#include <string_view>

namespace tavelle {

// The first `count` characters of `text` as a person counts them (extended grapheme clusters, Unicode Annex 29), or all
// of it where it is shorter. UTF-8; a byte that belongs to no character counts as one. By utf8proc, or the system's own
// text service.
std::string_view firstCharacters(std::string_view text, std::size_t count);

}  // namespace tavelle
