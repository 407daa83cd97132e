#include "view/wire/EventLine.h"

#include "view/wire/WireError.h"

#include <gtest/gtest.h>

namespace tavelle::view::tests {
namespace {

const Event everyKind[] = {
    {7, 1, Pressed{}},
    {7, 2, Edited{"two\nlines, \"quoted\" ⌘"}},
    {7, 3, Adjusted{0.7}},
    {7, 4, Selected{"tag"}},
    {7, 5, Selected{""}},
    {7, 6, KeyDown{15, 0x120000}},
    {7, 7, Edited{""}},
    {7, 8, Adjusted{2}},
    {~NodeID{0}, ~std::uint64_t{0}, Pressed{}},
    {7, 9, KeyDown{0xFFFF, 0xFFFFFFFF}},
};

TEST(EventLine, saysEachKindInOneLine) {
  EXPECT_EQ(encodeEvent({7, 1, Pressed{}}), "{\"number\":1,\"pressed\":true,\"target\":7}\n");
  EXPECT_EQ(encodeEvent({7, 2, Edited{"a\nb"}}), "{\"edited\":\"a\\nb\",\"number\":2,\"target\":7}\n");
  EXPECT_EQ(encodeEvent({7, 3, Adjusted{0.7}}), "{\"adjusted\":0.7,\"number\":3,\"target\":7}\n");
  EXPECT_EQ(encodeEvent({7, 4, Selected{"x"}}), "{\"number\":4,\"selected\":\"x\",\"target\":7}\n");
  EXPECT_EQ(encodeEvent({7, 5, KeyDown{15, 768}}),
            "{\"keyDown\":{\"keyCode\":15,\"modifierFlags\":768},\"number\":5,\"target\":7}\n");
}

TEST(EventLine, readsWhatItWrites) {
  for (const auto& event : everyKind) EXPECT_EQ(decodeEvent(encodeEvent(event)), event);
}

TEST(EventLine, refusesALineThatEndsEarly) {
  for (const auto& event : everyKind) {
    const auto line = encodeEvent(event);
    for (std::size_t length = 0; length + 2 <= line.size(); ++length) {
      EXPECT_THROW(decodeEvent(line.substr(0, length)), WireError) << line.substr(0, length);
    }
  }
}

TEST(EventLine, refusesEverythingElse) {
  for (const auto* line : {
           "null",
           "[]",
           "{}",
           R"({"number":1,"target":7})",
           R"({"number":1,"target":7,"pressed":false})",
           R"({"number":1,"target":7,"pressed":1})",
           R"({"number":1,"target":7,"shouted":true})",
           R"({"number":1,"target":7,"pressed":true,"edited":"x"})",
           R"({"number":1,"target":7,"edited":"x","selected":"x"})",
           R"({"number":-1,"target":7,"pressed":true})",
           R"({"number":1.5,"target":7,"pressed":true})",
           R"({"number":1,"target":"7","pressed":true})",
           R"({"number":1,"target":7,"edited":7})",
           R"({"number":1,"target":7,"edited":null})",
           R"({"number":1,"target":7,"adjusted":"0.7"})",
           R"({"number":1,"target":7,"selected":null})",
           R"({"number":1,"target":7,"keyDown":15})",
           R"({"number":1,"target":7,"keyDown":{"keyCode":15}})",
           R"({"number":1,"target":7,"keyDown":{"keyCode":65536,"modifierFlags":0}})",
           R"({"number":1,"target":7,"keyDown":{"keyCode":15,"modifierFlags":4294967296}})",
           R"({"number":1,"target":7,"keyDown":{"keyCode":15,"modifierFlags":0,"more":1}})",
           R"({"number":1,"target":7,"pressed":true} {})",
           "{\"number\":1,\"target\":7,\"edited\":\"\xFF\"}",
       }) {
    EXPECT_THROW(decodeEvent(line), WireError) << line;
  }
}

TEST(EventLine, showsNothingOfTheContentsInItsErrors) {
  try {
    decodeEvent(R"({"number":1,"target":7,"edited":"secret","more":1})");
    FAIL();
  } catch (const WireError& error) {
    EXPECT_EQ(std::string{error.what()}.find("secret"), std::string::npos);
  }
}

}  // namespace
}  // namespace tavelle::view::tests
