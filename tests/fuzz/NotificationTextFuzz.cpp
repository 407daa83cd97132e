// What a notification shows: a server's words, of any bytes and length.

#include "platform/linux/NotificationText.h"

#include "tests/fuzz/Fuzz.h"

namespace tavelle::fuzz {
namespace {

constexpr std::string_view ellipsis = "\u2026";
constexpr std::string_view replacement = "\uFFFD";

bool isControl(char c) {
  return (static_cast<unsigned char>(c) < 0x20 && c != '\n' && c != '\t') || c == '\x7F';
}

// U+0080 to U+009F.
bool hasLatin1Control(std::string_view text) {
  for (std::size_t at = 0; at + 1 < text.size(); ++at) {
    if (text[at] == '\xC2' && static_cast<unsigned char>(text[at + 1]) < 0xA0) return true;
  }
  return false;
}

std::string replaced(std::string text, std::string_view from, std::string_view to) {
  for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) {
    text.replace(at, from.size(), to);
  }
  return text;
}

void run(Input input) {
  const std::size_t mostBytes = input.choice(64);
  const std::string text{input.rest()};
  const auto shown = notificationText(text, mostBytes);
  require(isUTF8(shown), "it is not UTF-8");
  require(std::none_of(shown.begin(), shown.end(), isControl) && !hasLatin1Control(shown),
          "it has a control character");
  require(shown.size() <= std::min(text.size(), mostBytes) * replacement.size() + ellipsis.size(), "it is too long");
  require(text.size() <= mostBytes || shown.ends_with(ellipsis), "it is cut, and does not say so");

  const auto markup = escapedMarkup(shown);
  require(markup.find_first_of("<>") == std::string::npos, "there is markup");
  require(replaced(replaced(replaced(markup, "&lt;", "<"), "&gt;", ">"), "&amp;", "&") == shown,
          "it reads as another text");
}

}  // namespace
}  // namespace tavelle::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tavelle::fuzz::run({data, size});
  return 0;
}
