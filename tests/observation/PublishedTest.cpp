#include "observation/Published.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace tavelle::tests {
namespace {

using testing::ElementsAre;
using testing::Pair;

TEST(Published, tellsASubscriberTheCurrentValueAndThenEachNewOne) {
  Published<int> value{1};
  std::vector<int> heard;
  const auto token = value.subscribe([&heard](int now) { heard.push_back(now); });
  value.set(2);
  value.set(2);
  EXPECT_THAT(heard, ElementsAre(1, 2, 2));
}

TEST(Published, canLeaveTheCurrentValueOut) {
  Published<int> value{1};
  std::vector<int> heard;
  const auto token = value.subscribeDroppingFirst([&heard](int now) { heard.push_back(now); });
  value.set(2);
  EXPECT_THAT(heard, ElementsAre(2));
}

TEST(Published, tellsOfANewValueBeforeItTakesTheOldOnesPlace) {
  Published<int> value{1};
  std::vector<std::pair<int, int>> newAndCurrent;
  const auto token = value.subscribeDroppingFirst([&](int now) { newAndCurrent.emplace_back(now, value.get()); });
  value.set(2);
  EXPECT_THAT(newAndCurrent, ElementsAre(Pair(2, 1)));
  EXPECT_EQ(value.get(), 2);
}

}  // namespace
}  // namespace tavelle::tests
