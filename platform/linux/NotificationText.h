#pragma once

#include <string>

namespace tavelle {

// `text` as a notification can show it: valid UTF-8 without control characters, and cut, between characters and with an
// ellipsis, where it is longer than `mostBytes`. Takes time for what is shown, not for what is cut off.
std::string notificationText(const std::string& text, std::size_t mostBytes);

// For servers that read the body as markup.
std::string escapedMarkup(const std::string& text);

}  // namespace tavelle
