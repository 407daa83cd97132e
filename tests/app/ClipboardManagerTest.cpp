#include "app/ClipboardManager.h"

#include "platform/fake/FakePlatform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tavelle::tests {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

class ClipboardManagerTest : public testing::Test {
 protected:
  void save() {
    platform.loop.start(clipboard.save());
    platform.loop.runUntilIdle();
    platform.log.take();
  }

  FakePlatform platform;
  ClipboardManager clipboard{platform.pasteboard};
};

TEST_F(ClipboardManagerTest, startsEmpty) {
  EXPECT_THAT(clipboard.savedItems(), IsEmpty());
}

TEST_F(ClipboardManagerTest, savesEveryTypeWithItsDataInThePasteboardsOrder) {
  platform.pasteboard.contents = {{"text/html", "<b>a</b>"}, {"image/png", Data("\0\xFF", 2)}, {"empty", ""}};
  save();
  EXPECT_EQ(clipboard.savedItems(), platform.pasteboard.contents);
}

TEST_F(ClipboardManagerTest, leavesOutTypesWithoutData) {
  platform.pasteboard.contents = {{"text/plain", "a"}};
  platform.pasteboard.unreadable = {"hung"};
  save();
  EXPECT_THAT(clipboard.savedItems(), ElementsAre(Pair("text/plain", "a")));
}

TEST_F(ClipboardManagerTest, savesNothingWhereThePasteboardHasNoTypeList) {
  platform.pasteboard.contents = {{"text/plain", "a"}};
  save();
  platform.pasteboard.hasTypeList = false;
  save();
  EXPECT_THAT(clipboard.savedItems(), IsEmpty()) << "not what was saved before, either";
}

TEST_F(ClipboardManagerTest, bringsEveryRepresentationBackUnderItsOwnTypeInOrder) {
  const FakePasteboard::Contents rich{{"text/html", "<b>a</b>"}, {"text/rtf", "{\\b a}"}, {"text/plain", "a"}};
  platform.pasteboard.contents = rich;
  save();
  platform.pasteboard.contents = {{"text/plain", "something else"}};
  clipboard.restore();
  EXPECT_EQ(platform.pasteboard.contents, rich);
  EXPECT_THAT(platform.log.take(), ElementsAre("cleared", "set text/html", "set text/rtf", "set text/plain"));
}

TEST_F(ClipboardManagerTest, writesOnlyOnceForOneSave) {
  platform.pasteboard.contents = {{"text/plain", "a"}};
  save();
  clipboard.restore();
  platform.log.take();
  clipboard.restore();
  EXPECT_THAT(platform.log.take(), IsEmpty());
}

TEST_F(ClipboardManagerTest, doesNotTouchThePasteboardWithNothingSaved) {
  save();
  platform.pasteboard.contents = {{"text/plain", "the run's"}};
  clipboard.restore();
  EXPECT_THAT(platform.log.take(), IsEmpty());
  EXPECT_THAT(platform.pasteboard.contents, ElementsAre(Pair("text/plain", "the run's")));
}

TEST_F(ClipboardManagerTest, goesOnWhenThePasteboardRefusesAType) {
  platform.pasteboard.contents = {{"a", "1"}, {"b", "2"}};
  save();
  platform.pasteboard.refusesWrites = true;
  clipboard.restore();
  EXPECT_THAT(platform.log.take(), ElementsAre("cleared", "set a", "set b"));
  EXPECT_THAT(clipboard.savedItems(), IsEmpty());
}

}  // namespace
}  // namespace tavelle::tests
