#include "view/wire/LineBuffer.h"

#include "view/wire/WireError.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

namespace tavelle::view::tests {
namespace {

using testing::ElementsAre;

std::vector<std::string> takeAll(LineBuffer& buffer) {
  std::vector<std::string> lines;
  while (auto line = buffer.take()) lines.push_back(*std::move(line));
  return lines;
}

TEST(LineBuffer, givesWholeLinesHoweverTheBytesArrive) {
  const std::string stream = "one\n\ntwo\nthree";
  for (std::size_t piece = 1; piece <= stream.size(); ++piece) {
    LineBuffer buffer{100};
    std::vector<std::string> lines;
    for (std::size_t at = 0; at < stream.size(); at += piece) {
      buffer.append(std::string_view{stream}.substr(at, piece));
      for (auto& line : takeAll(buffer)) lines.push_back(std::move(line));
    }
    EXPECT_THAT(lines, ElementsAre("one", "", "two"));
    buffer.append("\n");
    EXPECT_THAT(takeAll(buffer), ElementsAre("three"));
  }
}

TEST(LineBuffer, keepsLinesThatAreNotTakenYet) {
  LineBuffer buffer{5};
  buffer.append("12345\n12345\n");
  buffer.append("1234");
  EXPECT_EQ(buffer.take(), "12345");
  buffer.append("5\n");
  EXPECT_THAT(takeAll(buffer), ElementsAre("12345", "12345"));
}

TEST(LineBuffer, refusesALineThatIsTooLongBeforeItIsWhole) {
  LineBuffer buffer{5};
  buffer.append("12345");
  EXPECT_EQ(buffer.take(), std::nullopt);
  buffer.append("6");
  EXPECT_THROW(buffer.take(), WireError);
}

TEST(LineBuffer, refusesALineThatIsTooLongAmongOthers) {
  LineBuffer buffer{5};
  buffer.append("1\n123456\n");
  EXPECT_EQ(buffer.take(), "1");
  EXPECT_THROW(buffer.take(), WireError);
}

}  // namespace
}  // namespace tavelle::view::tests
