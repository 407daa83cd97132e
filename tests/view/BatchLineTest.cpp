#include "view/wire/BatchLine.h"

#include "tests/view/ViewFixture.h"
#include "view/Names.h"
#include "view/wire/WireError.h"

namespace tavelle::view::tests {
namespace {

// Every operation, type and attribute, and every kind of value.
Batch everything() {
  Batch batch{42, {Update{1, {{Attribute::color, std::monostate{}}}}, Move{1, 2, 0}, Remove{3}}};
  Attributes attributes;
  for (auto at = 0; at <= static_cast<int>(Attribute::step); ++at) {
    const Value values[] = {true, 0.1, "two\nlines ⌘", 480.0, ""};
    attributes.set(static_cast<Attribute>(at), values[at % 5]);
  }
  for (auto type = 0; type <= static_cast<int>(NodeType::keyCapture); ++type) {
    batch.operations.emplace_back(Create{10 + static_cast<NodeID>(type), static_cast<NodeType>(type), attributes});
    batch.operations.emplace_back(Insert{1, 10 + static_cast<NodeID>(type), 9});
  }
  return batch;
}

TEST(BatchLine, saysABatchInOneLine) {
  const Batch batch{
      3,
      {Create{7, NodeType::text, {{Attribute::text, "None"}, {Attribute::bold, true}, {Attribute::width, 30.0}}},
       Insert{1, 7, 0}, Update{7, {{Attribute::color, std::monostate{}}}}, Move{1, 7, 5}, Remove{7}}};
  EXPECT_EQ(encodeBatch(batch),
            R"({"lastEvent":3,"operations":[["create",7,"text",{"bold":true,"text":"None","width":30.0}],)"
            R"(["insert",7,1,0],["update",7,{"color":null}],["move",7,1,5],["remove",7]]})"
            "\n");
}

TEST(BatchLine, readsWhatItWrites) {
  EXPECT_EQ(decodeBatch(encodeBatch(everything())), everything());
  EXPECT_EQ(decodeBatch(encodeBatch({0, {}})), (Batch{0, {}}));
}

TEST(BatchLine, refusesALineThatEndsEarly) {
  const auto line = encodeBatch(everything());
  for (std::size_t length = 0; length + 2 <= line.size(); length += 7) {
    EXPECT_THROW(decodeBatch(line.substr(0, length)), WireError);
  }
}

TEST(BatchLine, refusesEverythingElse) {
  for (const auto* line : {
           "",
           "[]",
           R"({"lastEvent":0})",
           R"({"operations":[]})",
           R"({"lastEvent":0,"operations":{}})",
           R"({"lastEvent":0,"operations":null})",
           R"({"lastEvent":-1,"operations":[]})",
           R"({"lastEvent":0,"operations":[],"more":1})",
           R"({"lastEvent":0,"operations":[[]]})",
           R"({"lastEvent":0,"operations":[7]})",
           R"({"lastEvent":0,"operations":[[7]]})",
           R"({"lastEvent":0,"operations":[["destroy",7]]})",
           R"({"lastEvent":0,"operations":[["remove"]]})",
           R"({"lastEvent":0,"operations":[["remove",7,8]]})",
           R"({"lastEvent":0,"operations":[["remove","7"]]})",
           R"({"lastEvent":0,"operations":[["remove",-7]]})",
           R"({"lastEvent":0,"operations":[["insert",7,1]]})",
           R"({"lastEvent":0,"operations":[["move",7,1,null]]})",
           R"({"lastEvent":0,"operations":[["create",7,"text"]]})",
           R"({"lastEvent":0,"operations":[["create",7,"window",{}]]})",
           R"({"lastEvent":0,"operations":[["create",7,"text",[]]]})",
           R"({"lastEvent":0,"operations":[["create",7,"text",{"shape":"round"}]]})",
           R"({"lastEvent":0,"operations":[["update",7,{"text":[]}]]})",
           R"({"lastEvent":0,"operations":[["update",7,{"text":{}}]]})",
           R"({"lastEvent":0,"operations":[["update",7,null]]})",
       }) {
    EXPECT_THROW(decodeBatch(line), WireError) << line;
  }
}

TEST(BatchLine, doesNotEndAtANUL) {
  EXPECT_THROW(decodeBatch(std::string{"{\"lastEvent\":0,\"operations\":[]}\0", 32}), WireError);
  EXPECT_THROW(decodeBatch(std::string{"{\"lastEvent\":0,\"operations\":[]}\0more", 36}), WireError);
}

TEST(BatchLine, replacesBytesThatAreNoText) {
  const auto batch = decodeBatch(encodeBatch({0, {Update{1, {{Attribute::text, "a\xFF"}}}}}));
  EXPECT_EQ(batch.operations[0], (HostOperation{Update{1, {{Attribute::text, "a\uFFFD"}}}}));
}

TEST(Names, areReadBackAsWhatTheyName) {
  for (auto at = 0; at <= static_cast<int>(Attribute::step); ++at) {
    EXPECT_EQ(attributeNamed(nameOf(static_cast<Attribute>(at))), static_cast<Attribute>(at));
  }
  for (auto at = 0; at <= static_cast<int>(NodeType::keyCapture); ++at) {
    EXPECT_EQ(nodeTypeNamed(nameOf(static_cast<NodeType>(at))), static_cast<NodeType>(at));
  }
  EXPECT_EQ(nameOf(NodeType::labeledContent), "labeledContent");
  EXPECT_EQ(nameOf(NodeType::secureField), "secureField");
  EXPECT_EQ(nameOf(NodeType::spacer), "spacer");
  EXPECT_EQ(nameOf(Attribute::monospacedDigits), "monospacedDigits");
  EXPECT_EQ(nameOf(Attribute::minimumHeight), "minimumHeight");
  EXPECT_EQ(nameOf(Attribute::value), "value");
}

}  // namespace
}  // namespace tavelle::view::tests
