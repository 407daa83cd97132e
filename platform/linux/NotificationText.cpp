#include "platform/linux/NotificationText.h"

#include "platform/linux/GObjectPtr.h"

#include <glib.h>

#include <string_view>

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

// U+0080 to U+009F, of which a terminal takes some for the beginning of a command.
bool isLatin1Control(std::string_view character) {
  return character.starts_with('\xC2') && static_cast<unsigned char>(character[1]) < 0xA0;
}

// A blank in the place of each control character of valid UTF-8.
std::string withoutControls(std::string_view text) {
  std::string shown;
  shown.reserve(text.size());
  for (std::size_t at = 0; at < text.size(); ++at) {
    const bool isLongControl = isLatin1Control(text.substr(at));
    shown += isLongControl || isControl(text[at]) ? ' ' : text[at];
    if (isLongControl) ++at;
  }
  return shown;
}

}  // namespace

std::string notificationText(const std::string& text, std::size_t mostBytes) {
  constexpr const char* ellipsis = "\u2026";
  const bool isCut = text.size() > mostBytes;
  const auto shown = isCut ? boundaryAtOrBefore(text, mostBytes) : text.size();
  const GPtr<> valid{g_utf8_make_valid(text.data(), static_cast<gssize>(shown))};
  auto result = withoutControls(valid.get());
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
