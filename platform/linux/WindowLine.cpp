#include "platform/linux/WindowLine.h"

#include "view/wire/BatchLine.h"
#include "view/wire/EventLine.h"
#include "view/wire/JSONReading.h"
#include "view/wire/WireError.h"

namespace tavelle {
namespace {

using view::JSON;

JSON write(const std::optional<WindowPlace>& place) {
  if (!place) return nullptr;
  return {{"x", place->x}, {"y", place->y}};
}

std::optional<WindowPlace> readPlace(const JSON& json) {
  if (json.is_null()) return std::nullopt;
  view::readObject(json, 2);
  return WindowPlace{view::readDouble(view::readMember(json, "x")), view::readDouble(view::readMember(json, "y"))};
}

bool isOfTheWindow(std::string_view line) {
  return line.starts_with('[');
}

// The contents of an array by its name.
struct Named {
  JSON array;

  explicit Named(std::string_view line) : array(view::parseLine(line)) { view::readArray(array, 2); }

  bool is(const char* name) const { return view::readString(array[0]) == name; }
  const JSON& contents(std::size_t size) const { return view::readObject(array[1], size); }
  std::uint64_t number() const { return view::readNumber(view::readMember(contents(1), "number")); }
};

std::string numbered(const char* name, std::uint64_t number) {
  return view::toLine(JSON::array({name, {{"number", number}}}));
}

}  // namespace

std::string encodeLine(const Present& present) {
  const JSON contents{{"number", present.number},
                      {"title", present.title},
                      {"width", present.width},
                      {"height", present.height},
                      {"place", write(present.place)}};
  return view::toLine(JSON::array({"present", contents}));
}

std::string encodeLine(const Presented& presented) {
  return numbered("presented", presented.number);
}

std::string encodeLine(const Ping& ping) {
  return numbered("ping", ping.number);
}

std::string encodeLine(const Pong& pong) {
  return numbered("pong", pong.number);
}

std::string encodeLine(const Closed& closed) {
  return view::toLine(JSON::array({"closed", {{"place", write(closed.place)}}}));
}

std::variant<view::Batch, Present, Ping> decodeOrder(std::string_view line) {
  if (!isOfTheWindow(line)) return view::decodeBatch(line);
  const Named named{line};
  if (named.is("ping")) return Ping{named.number()};
  if (!named.is("present")) throw view::WireError{"an unknown order"};
  const auto& contents = named.contents(5);
  return Present{
      view::readNumber(view::readMember(contents, "number")), view::readString(view::readMember(contents, "title")),
      view::readDouble(view::readMember(contents, "width")), view::readDouble(view::readMember(contents, "height")),
      readPlace(view::readMember(contents, "place"))};
}

std::variant<view::Event, Presented, Pong, Closed> decodeReport(std::string_view line) {
  if (!isOfTheWindow(line)) return view::decodeEvent(line);
  const Named named{line};
  if (named.is("presented")) return Presented{named.number()};
  if (named.is("pong")) return Pong{named.number()};
  if (named.is("closed")) return Closed{readPlace(view::readMember(named.contents(1), "place"))};
  throw view::WireError{"an unknown report"};
}

}  // namespace tavelle
