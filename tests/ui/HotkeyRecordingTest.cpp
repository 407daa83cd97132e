#include "tests/ui/GeneralSettingsTabFixture.h"

namespace tavelle::tests {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using HotkeyRecordingTest = GeneralSettingsTabFixture;

TEST_F(HotkeyRecordingTest, recordsShiftCommandR) {
  showWith({profile("A")});
  press("None");
  EXPECT_EQ(hotkeyTitle(), "Press keys...");
  keyDown(15, command | shift, "R");
  EXPECT_EQ(stored(0).keyCode, 15);
  EXPECT_EQ(stored(0).modifiers, 768);
  EXPECT_EQ(hotkeyTitle(), "⌘⇧R");
  EXPECT_THAT(platform.defaults.writes, ElementsAre("rewriteProfiles", "rewriteProfiles"))
      << "key code, then modifiers";
}

TEST_F(HotkeyRecordingTest, recordsABareKey) {
  showWith({profile("A")});
  press("None");
  keyDown(18, 0, "1");
  EXPECT_EQ(stored(0).keyCode, 18);
  EXPECT_EQ(stored(0).modifiers, 0);
  EXPECT_EQ(hotkeyTitle(), "Key18");
}

TEST_F(HotkeyRecordingTest, takesTheKeyAWithoutModifiersForNoHotkey) {
  showWith({profile("A", 15, 768), profile("B")});
  press("⌘⇧R");
  keyDown(0, 0, "a");
  EXPECT_EQ(stored(0).keyCode, 0);
  EXPECT_EQ(stored(0).modifiers, 0);
  EXPECT_THAT(section(1), ElementsAre("Profile Settings", "Name:", "Hotkey:", "None"));
}

TEST_F(HotkeyRecordingTest, recordsTheSameModifiersWithCapsLockOn) {
  showWith({profile("A")});
  press("None");
  keyDown(15, command | shift | capsLock, "R");
  EXPECT_EQ(stored(0).modifiers, 768);
}

TEST_F(HotkeyRecordingTest, recordsEscapeReturnAndTabLikeAnyKey) {
  showWith({profile("A", 15, 768)});
  constexpr std::uint16_t keys[] = {53, 36, 48, 105, 82};
  for (const auto key : keys) {
    press(hotkeyTitle());
    keyDown(key, 0);
    EXPECT_EQ(hotkeyTitle(), "Key" + std::to_string(key));
  }
}

TEST_F(HotkeyRecordingTest, goesOnRecordingWhenItsButtonIsPressedAgain) {
  showWith({profile("A")});
  press("None");
  press("Press keys...");
  EXPECT_EQ(hotkeyTitle(), "Press keys...");
}

TEST_F(HotkeyRecordingTest, keepsTheKeyThatItRecordsOutOfTheFocusedField) {
  showWith({profile("A")});
  screen->focus(screen->widget("Name:"));
  press("None");
  type("x");
  EXPECT_EQ(stored(0).name, "A");
  type("y");
  EXPECT_EQ(stored(0).name, "Ay") << "one key only";
}

TEST_F(HotkeyRecordingTest, recordsForTheProfileThatIsSelectedWhenTheKeyIsPressed) {
  showWith({profile("A"), profile("B")});
  press("None");
  select(1);
  EXPECT_EQ(hotkeyTitle(), "Press keys...");
  keyDown(15, command, "r");
  EXPECT_EQ(stored(0).keyCode, 0);
  EXPECT_EQ(stored(1).keyCode, 15);
}

TEST_F(HotkeyRecordingTest, goesOnRecordingWhenTheProfileIsRemoved) {
  showWith({profile("A"), profile("B")});
  press("None");
  press("minus");
  EXPECT_EQ(hotkeyTitle(), "Press keys...");
  keyDown(15, command, "r");
  EXPECT_EQ(stored(0).keyCode, 15);
}

TEST_F(HotkeyRecordingTest, goesOnRecordingWhereNoProfileIsSelected) {
  showWith({profile("A"), profile("B")});
  press("None");
  choose(NodeType::list, "");
  keyDown(15, command, "r");
  EXPECT_THAT(platform.defaults.writes, IsEmpty());
  select(0);
  EXPECT_EQ(hotkeyTitle(), "Press keys...");
}

TEST_F(HotkeyRecordingTest, warnsEachOfTwoProfilesWithTheSameHotkeyOfTheOther) {
  showWith({profile("One", 15, 768), profile("Two", 15, 768)});
  EXPECT_THAT(section(1), ElementsAre("Profile Settings", "Name:", "Hotkey:", "⌘⇧R", "Hotkey conflicts with \"Two\""));
  EXPECT_EQ(styleOf("Hotkey conflicts with \"Two\"", Attribute::font), "caption");
  EXPECT_EQ(styleOf("Hotkey conflicts with \"Two\"", Attribute::color), "orange");
  select(1);
  EXPECT_TRUE(screen->shows("Hotkey conflicts with \"One\""));
}

TEST_F(HotkeyRecordingTest, doesNotWarnOfTheSameKeyWithOtherModifiers) {
  showWith({profile("One", 15, 768), profile("Two", 15, 256)});
  EXPECT_EQ(section(1).size(), 4);
  select(1);
  EXPECT_EQ(section(1).size(), 4);
}

}  // namespace
}  // namespace tavelle::tests
