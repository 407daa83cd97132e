#include "platform/linux/x11/Terminals.h"

#include <gtest/gtest.h>

namespace tavelle::x11 {
namespace {

TEST(Terminals, areCopiedFromWithShiftWhereTheyKnowIt) {
  EXPECT_EQ(editingKeysOf("gnome-terminal-server", "Gnome-terminal"), EditingKeys::controlShift);
  EXPECT_EQ(editingKeysOf("xfce4-terminal", "Xfce4-terminal"), EditingKeys::controlShift);
  EXPECT_EQ(editingKeysOf("konsole", "konsole"), EditingKeys::controlShift);
  EXPECT_EQ(editingKeysOf("Alacritty", "Alacritty"), EditingKeys::controlShift);
  EXPECT_EQ(editingKeysOf("st", "st-256color"), EditingKeys::controlShift);
  EXPECT_EQ(editingKeysOf("org.gnome.Ptyxis", "org.gnome.Ptyxis"), EditingKeys::controlShift);
}

TEST(Terminals, areLeftAloneWhereTheyHaveNoKeyForIt) {
  EXPECT_EQ(editingKeysOf("xterm", "XTerm"), EditingKeys::none);
  EXPECT_EQ(editingKeysOf("xterm", "UXTerm"), EditingKeys::none);
  EXPECT_EQ(editingKeysOf("urxvt", "URxvt"), EditingKeys::none);
}

TEST(Terminals, areKnownByTheirClassWhateverTheInstanceIsCalled) {
  EXPECT_EQ(editingKeysOf("mail", "XTerm"), EditingKeys::none);
  EXPECT_EQ(editingKeysOf("xterm", "Alacritty"), EditingKeys::controlShift);
}

TEST(Terminals, areKnownByTheirInstanceWhereTheClassIsTheirOwn) {
  EXPECT_EQ(editingKeysOf("xterm", "Mail"), EditingKeys::none);
}

TEST(Terminals, areTakenForOnesThatKnowShiftWhereOnlyTheNameTells) {
  EXPECT_EQ(editingKeysOf("new-terminal", "New-Terminal"), EditingKeys::controlShift);
}

TEST(Terminals, areNotWhatOtherApplicationsAre) {
  EXPECT_EQ(editingKeysOf("mousepad", "Mousepad"), EditingKeys::control);
  EXPECT_EQ(editingKeysOf("", ""), EditingKeys::control);
  EXPECT_EQ(editingKeysOf("stellarium", "stellarium"), EditingKeys::control);
}

}  // namespace
}  // namespace tavelle::x11
