// Properties that other X11 clients write: selections, lists of targets, announcements of a size.

#include "platform/linux/x11/PropertyValues.h"
#include "platform/linux/x11/TextEncoding.h"
#include "tests/fuzz/Fuzz.h"

#include <array>

namespace tavelle::fuzz {
namespace {

constexpr std::array<std::uint8_t, 5> formats{8, 16, 32, 0, 255};
constexpr std::array<xcb_atom_t, 2> types{XCB_ATOM_STRING, 300};

void readItems(std::uint8_t format, const Data& bytes) {
  const auto items = x11::itemsIn(format, bytes);
  require(items.size() == (format == 32 ? bytes.size() / 4 : 0), "items are lost or made up");
  const std::string_view packed{reinterpret_cast<const char*>(items.data()), items.size() * 4};
  require(bytes.starts_with(packed), "the items are others");
}

void readAnnouncement(const Data& bytes) {
  const auto items = x11::itemsIn(32, bytes);
  require(x11::announcedSizeIn(bytes) == (items.empty() ? 0 : items.front()), "the announced size is another");
}

void readText(xcb_atom_t type, std::uint8_t format, const Data& bytes) {
  const auto text = x11::textIn(type, format, bytes);
  const bool canBeText = format == 8 && (type == XCB_ATOM_STRING || isUTF8(bytes));
  require(text.has_value() == canBeText, "text is what can be text");
  if (!text) return;
  require(isUTF8(*text), "the text is not UTF-8");
  const auto original = type == XCB_ATOM_STRING ? x11::latin1FromUTF8(*text) : text;
  require(original == bytes, "the text is another");
}

void writeText(const std::string& text) {
  const auto latin1 = x11::latin1FromUTF8(text);
  if (latin1) require(x11::utf8FromLatin1(*latin1) == text, "the Latin-1 is of another text");
  const bool fits = std::none_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) > 0xC3; });
  require(latin1.has_value() == fits, "Latin-1 has all characters to U+00FF and no others");
}

void run(Input input) {
  const auto format = formats.at(input.choice(formats.size()));
  const auto type = types.at(input.choice(types.size()));
  const Data bytes{input.rest()};
  readItems(format, bytes);
  readAnnouncement(bytes);
  readText(type, format, bytes);
  writeText(textOf(bytes));
}

}  // namespace
}  // namespace tavelle::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tavelle::fuzz::run({data, size});
  return 0;
}
