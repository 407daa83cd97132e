#pragma once

#include "platform/Data.h"

#include <xcb/xcb.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavelle::x11 {

// What other clients have put into properties. Any client can put any bytes there, of any type and format.

// The bytes in a reply that has a property. They live as long as the reply.
std::string_view bytesOf(const xcb_get_property_reply_t& property);

// The items of a property of format 32; none of another format, and an item that is cut short is none.
std::vector<std::uint32_t> itemsIn(std::uint8_t format, std::string_view bytes);

// Plain text: Latin-1 where the type is STRING, UTF-8 otherwise. No value where it is no text.
std::optional<std::string> textIn(xcb_atom_t type, std::uint8_t format, Data bytes);

// How many bytes the owner of a selection is going to send in pieces, by the property of type INCR; 0 where it does not
// say.
std::uint32_t announcedSizeIn(std::string_view bytes);

// WM_CLASS: two strings, each ended by a NUL or by the property's end. What is missing is empty.
struct WindowClass {
  std::string_view instanceName;
  std::string_view className;
};
WindowClass windowClassIn(std::string_view bytes);

}  // namespace tavelle::x11
