#include "view/wire/BatchLine.h"

#include "view/Names.h"
#include "view/wire/JSONReading.h"
#include "view/wire/WireError.h"

#include <variant>

namespace tavelle::view {
namespace {

JSON write(const Value& value) {
  return std::visit(
      [](const auto& held) -> JSON {
        if constexpr (std::is_same_v<decltype(held), const std::monostate&>) {
          return nullptr;
        } else {
          return held;
        }
      },
      value);
}

JSON write(const Attributes& attributes) {
  auto json = JSON::object();
  for (const auto& [attribute, value] : attributes) json[std::string{nameOf(attribute)}] = write(value);
  return json;
}

struct OperationWriter {
  JSON operator()(const Create& create) const {
    return {"create", create.node, nameOf(create.type), write(create.attributes)};
  }
  JSON operator()(const Update& update) const { return {"update", update.node, write(update.attributes)}; }
  JSON operator()(const Insert& insert) const { return {"insert", insert.node, insert.parent, insert.after}; }
  JSON operator()(const Move& move) const { return {"move", move.node, move.parent, move.after}; }
  JSON operator()(const Remove& remove) const { return JSON::array({"remove", remove.node}); }
};

Value readValue(const JSON& json) {
  if (json.is_null()) return std::monostate{};
  if (json.is_boolean()) return json.get<bool>();
  if (json.is_number()) return readDouble(json);
  return readString(json);
}

Attributes readAttributes(const JSON& json) {
  readObject(json, json.size());
  Attributes attributes;
  for (const auto& [name, value] : json.items()) {
    const auto attribute = attributeNamed(name);
    if (!attribute) throw WireError{"an unknown attribute"};
    attributes.set(*attribute, readValue(value));
  }
  return attributes;
}

Create readCreate(const JSON& json) {
  readArray(json, 4);
  const auto type = nodeTypeNamed(readString(json[2]));
  if (!type) throw WireError{"an unknown type of node"};
  return {readNumber(json[1]), *type, readAttributes(json[3])};
}

// An insertion or a move.
template <typename Placement>
Placement readPlacement(const JSON& json) {
  readArray(json, 4);
  return {.parent = readNumber(json[2]), .node = readNumber(json[1]), .after = readNumber(json[3])};
}

HostOperation readOperation(const JSON& json) {
  if (!json.is_array() || json.empty()) throw WireError{"an operation is not an array"};
  const auto& name = readString(json[0]);
  if (name == "create") return readCreate(json);
  if (name == "update") return Update{readNumber(readArray(json, 3)[1]), readAttributes(json[2])};
  if (name == "insert") return readPlacement<Insert>(json);
  if (name == "move") return readPlacement<Move>(json);
  if (name == "remove") return Remove{readNumber(readArray(json, 2)[1])};
  throw WireError{"an unknown operation"};
}

}  // namespace

std::string encodeBatch(const Batch& batch) {
  auto operations = JSON::array();
  for (const auto& operation : batch.operations) operations.push_back(std::visit(OperationWriter{}, operation));
  return toLine({{"lastEvent", batch.lastEvent}, {"operations", std::move(operations)}});
}

Batch decodeBatch(std::string_view line) {
  const auto json = parseLine(line);
  readObject(json, 2);
  Batch batch{readNumber(readMember(json, "lastEvent")), {}};
  const auto& operations = readMember(json, "operations");
  for (const auto& operation : readArray(operations, operations.size())) {
    batch.operations.push_back(readOperation(operation));
  }
  return batch;
}

}  // namespace tavelle::view
