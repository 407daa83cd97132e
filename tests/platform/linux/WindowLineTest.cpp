#include "platform/linux/WindowLine.h"

#include "view/wire/BatchLine.h"
#include "view/wire/EventLine.h"
#include "view/wire/WireError.h"

#include <gtest/gtest.h>

namespace tavelle::tests {
namespace {

TEST(WindowLine, asksForTheWindowWhereItStood) {
  const Present present{7, "Tavelle \"Settings\"\n", 480, 500, WindowPlace{-12, 34.5}};
  EXPECT_EQ(std::get<Present>(decodeOrder(encodeLine(present))), present);
}

TEST(WindowLine, asksForTheWindowInTheMiddle) {
  const Present present{1, "Settings", 480, 500, std::nullopt};
  EXPECT_EQ(std::get<Present>(decodeOrder(encodeLine(present))), present);
}

TEST(WindowLine, carriesTheContentAsItIs) {
  const view::Batch batch{3, {view::Remove{5}}};
  EXPECT_EQ(std::get<view::Batch>(decodeOrder(view::encodeBatch(batch))), batch);
  const view::Event event{5, 4, view::Edited{"["}};
  EXPECT_EQ(std::get<view::Event>(decodeReport(view::encodeEvent(event))), event);
}

TEST(WindowLine, reportsThatItIsDrawnThatItIsThereAndThatItIsClosed) {
  EXPECT_EQ(std::get<Presented>(decodeReport(encodeLine(Presented{9}))), Presented{9});
  EXPECT_EQ(std::get<Ping>(decodeOrder(encodeLine(Ping{3}))), Ping{3});
  EXPECT_EQ(std::get<Pong>(decodeReport(encodeLine(Pong{3}))), Pong{3});
  EXPECT_EQ(std::get<Closed>(decodeReport(encodeLine(Closed{WindowPlace{1, 2}}))), (Closed{WindowPlace{1, 2}}));
  EXPECT_EQ(std::get<Closed>(decodeReport(encodeLine(Closed{}))), Closed{});
}

TEST(WindowLine, isOneLine) {
  const auto line = encodeLine(Present{1, "two\nlines", 1, 1, std::nullopt});
  EXPECT_EQ(line.find('\n'), line.size() - 1);
}

TEST(WindowLine, isRefusedWhenItIsAnythingElse) {
  for (const auto* line :
       {"", "[", "[]", "[1,2]", R"(["present"])", R"(["present",{}])", R"(["closed",{"place":null}])",
        R"(["presented",{"number":1}])", R"(["pong",{"number":1}])", R"(["ping",{"number":-1}])"}) {
    EXPECT_THROW(decodeOrder(line), view::WireError) << line;
  }
  for (const auto* line :
       {"", "[", R"(["presented",{"number":-1}])", R"(["presented",{"number":"1"}])", R"(["closed",{"place":{"x":1}}])",
        R"(["closed",[]])", R"(["moved",{}])", R"(["ping",{"number":1}])", R"(["pong",{}])"}) {
    EXPECT_THROW(decodeReport(line), view::WireError) << line;
  }
}

}  // namespace
}  // namespace tavelle::tests
