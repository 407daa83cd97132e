#include "view/Matching.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace tavelle::view::tests {
namespace {

using testing::ElementsAre;
using testing::Eq;

// Each letter a key.
std::vector<Identity> keyed(std::string_view letters) {
  std::vector<Identity> identities;
  for (std::size_t at = 0; at < letters.size(); ++at) {
    identities.push_back({letters.substr(at, 1), NodeType::text, nullptr});
  }
  return identities;
}

TEST(Matching, goesOnByKeyWhereverItStands) {
  EXPECT_THAT(match(keyed("abc"), keyed("xca")), ElementsAre(Eq(std::nullopt), Eq(2U), Eq(0U)));
}

TEST(Matching, takesThoseOfOneIdentityInTheirOrder) {
  EXPECT_THAT(match(keyed("xaa"), keyed("aaa")), ElementsAre(Eq(1U), Eq(2U), Eq(std::nullopt)));
}

TEST(Matching, takesNothingOfAnotherTypeOrComponent) {
  const char component{};
  const std::vector<Identity> previous{{"a", NodeType::text, nullptr}};
  EXPECT_THAT(match(previous, {{"a", NodeType::button, nullptr}}), ElementsAre(Eq(std::nullopt)));
  EXPECT_THAT(match(previous, {{"a", NodeType::text, &component}}), ElementsAre(Eq(std::nullopt)));
}

TEST(Matching, letsTheLongestOrderedRunStay) {
  EXPECT_THAT(staying({4, 0, 1, 2, 3}), ElementsAre(false, true, true, true, true));
  EXPECT_THAT(staying({1, 2, 3, 4, 0}), ElementsAre(true, true, true, true, false));
  EXPECT_THAT(staying({std::nullopt, 0, std::nullopt, 1}), ElementsAre(false, true, false, true));
  EXPECT_THAT(staying({3, 0, 4, 1, 2}), ElementsAre(false, true, false, true, true));
  EXPECT_THAT(staying({std::nullopt}), ElementsAre(false));
}

}  // namespace
}  // namespace tavelle::view::tests
