#include "platform/linux/x11/PropertyValues.h"

#include "platform/UTF8.h"
#include "platform/linux/x11/TextEncoding.h"

#include <algorithm>
#include <cstring>

namespace tavelle::x11 {

std::string_view bytesOf(const xcb_get_property_reply_t& property) {
  return {static_cast<const char*>(xcb_get_property_value(&property)),
          static_cast<std::size_t>(xcb_get_property_value_length(&property))};
}

std::vector<std::uint32_t> itemsIn(std::uint8_t format, std::string_view bytes) {
  if (format != 32) return {};
  std::vector<std::uint32_t> items(bytes.size() / sizeof(std::uint32_t));
  if (!items.empty()) std::memcpy(items.data(), bytes.data(), items.size() * sizeof(std::uint32_t));
  return items;
}

std::optional<std::string> textIn(xcb_atom_t type, std::uint8_t format, Data bytes) {
  if (format != 8) return std::nullopt;
  if (type == XCB_ATOM_STRING) return utf8FromLatin1(bytes);
  if (!isUTF8(bytes)) return std::nullopt;
  return bytes;
}

std::uint32_t announcedSizeIn(std::string_view bytes) {
  std::uint32_t size = 0;
  if (bytes.size() >= sizeof size) std::memcpy(&size, bytes.data(), sizeof size);
  return size;
}

WindowClass windowClassIn(std::string_view bytes) {
  const auto end = std::min(bytes.find('\0'), bytes.size());
  const auto rest = bytes.substr(std::min(end + 1, bytes.size()));
  return {.instanceName = bytes.substr(0, end), .className = rest.substr(0, rest.find('\0'))};
}

}  // namespace tavelle::x11
