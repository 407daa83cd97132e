#pragma once

#include "view/Event.h"
#include "view/HostOperation.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace tavelle {

// What the process that owns a window and the one that draws it say to each other, a line each. Lines of the content
// are objects (view/wire); those of the window itself are arrays of a name and what there is to say:
//
//   ["present",{"number":1,"title":"Settings","width":480,"height":500,"place":null}]
//   ["presented",{"number":1}]
//   ["ping",{"number":2}]
//   ["pong",{"number":2}]
//   ["closed",{"place":{"x":12,"y":34}}]

// Of a window's upper left corner, in pixels of the screen. Unknown on desktops that do not tell.
struct WindowPlace {
  double x;
  double y;
  bool operator==(const WindowPlace&) const = default;
};

// Show the window, above the others and with the keyboard: there, or in the middle of the screen.
struct Present {
  std::uint64_t number;
  std::string title;
  double width;  // of the content, in points
  double height;
  std::optional<WindowPlace> place;
  bool operator==(const Present&) const = default;
};

// It is drawn, for the request of that number.
struct Presented {
  std::uint64_t number;
  bool operator==(const Presented&) const = default;
};

// Say that you are there: once all that came before, lines and the person's input alike, is dealt with.
struct Ping {
  std::uint64_t number;
  bool operator==(const Ping&) const = default;
};

// It is, for the ping of that number.
struct Pong {
  std::uint64_t number;
  bool operator==(const Pong&) const = default;
};

// The person has closed it, and it is hidden.
struct Closed {
  std::optional<WindowPlace> place;
  bool operator==(const Closed&) const = default;
};

std::string encodeLine(const Present& present);
std::string encodeLine(const Presented& presented);
std::string encodeLine(const Ping& ping);
std::string encodeLine(const Pong& pong);
std::string encodeLine(const Closed& closed);

// What a renderer hears, and what it says. Each throws view::WireError for anything else.
std::variant<view::Batch, Present, Ping> decodeOrder(std::string_view line);
std::variant<view::Event, Presented, Pong, Closed> decodeReport(std::string_view line);

}  // namespace tavelle
