#include "view/wire/EventLine.h"

#include "view/wire/JSONReading.h"
#include "view/wire/WireError.h"

#include <variant>

namespace tavelle::view {
namespace {

struct InputWriter {
  JSON& line;

  void operator()(const Pressed&) const { line["pressed"] = true; }
  void operator()(const Edited& edited) const { line["edited"] = edited.text; }
  void operator()(const Adjusted& adjusted) const { line["adjusted"] = adjusted.value; }
  void operator()(const Selected& selected) const { line["selected"] = selected.tag; }
  void operator()(const KeyDown& key) const {
    line["keyDown"] = {{"keyCode", key.keyCode}, {"modifierFlags", key.modifierFlags}};
  }
};

KeyDown readKeyDown(const JSON& json) {
  readObject(json, 2);
  return {static_cast<std::uint16_t>(readNumber(readMember(json, "keyCode"), 0xFFFF)),
          static_cast<std::uint32_t>(readNumber(readMember(json, "modifierFlags"), 0xFFFFFFFF))};
}

Input readInput(const JSON& line) {
  if (const auto found = line.find("edited"); found != line.end()) return Edited{readString(*found)};
  if (const auto found = line.find("adjusted"); found != line.end()) return Adjusted{readDouble(*found)};
  if (const auto found = line.find("selected"); found != line.end()) return Selected{readString(*found)};
  if (const auto found = line.find("keyDown"); found != line.end()) return readKeyDown(*found);
  if (readMember(line, "pressed") != true) throw WireError{"pressed is not true"};
  return Pressed{};
}

}  // namespace

std::string encodeEvent(const Event& event) {
  JSON line{{"number", event.number}, {"target", event.target}};
  std::visit(InputWriter{line}, event.input);
  return toLine(line);
}

Event decodeEvent(std::string_view line) {
  const auto json = parseLine(line);
  readObject(json, 3);
  return {readNumber(readMember(json, "target")), readNumber(readMember(json, "number")), readInput(json)};
}

}  // namespace tavelle::view
