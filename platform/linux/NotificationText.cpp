#include "platform/linux/NotificationText.h"

#include "platform/linux/GObjectPtr.h"

#include <glib.h>

namespace tavelle {
namespace {

bool isContinuation(char c) {
  return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

// Where the last character that begins before `limit` and does not fit ends up being cut.
std::size_t boundaryAtOrBefore(const std::string& text, std::size_t limit) {
  constexpr std::size_t longestCharacter = 4;
  std::size_t at = limit;
  while (at > 0 && limit - at < longestCharacter && isContinuation(text[at])) --at;
  return isContinuation(text[at]) ? limit : at;  // not UTF-8: any place is as good
}

bool isControl(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return (byte < 0x20 && c != '\n' && c != '\t') || byte == 0x7F;
}

}  // namespace

std::string notificationText(const std::string& text, std::size_t mostBytes) {
  constexpr const char* ellipsis = "\u2026";
  const bool isCut = text.size() > mostBytes;
  const auto shown = isCut ? boundaryAtOrBefore(text, mostBytes) : text.size();
  const GPtr<> valid{g_utf8_make_valid(text.data(), static_cast<gssize>(shown))};
  std::string result = valid.get();
  for (char& c : result) {
    if (isControl(c)) c = ' ';
  }
  return isCut ? result + ellipsis : result;
}

std::string escapedMarkup(const std::string& text) {
  std::string escaped;
  for (const char c : text) {
    switch (c) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      default:
        escaped += c;
    }
  }
  return escaped;
}

}  // namespace tavelle
