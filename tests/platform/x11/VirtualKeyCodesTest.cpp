#include "platform/linux/VirtualKeyCodes.h"

#include <gtest/gtest.h>
#include <linux/input-event-codes.h>

#include <map>
#include <set>

namespace tavelle::x11 {
namespace {

TEST(VirtualKeyCodes, nameTheKeysOfALetterBoardByTheirPlaces) {
  EXPECT_EQ(evdevCodeOf(0), KEY_A);
  EXPECT_EQ(evdevCodeOf(8), KEY_C);
  EXPECT_EQ(evdevCodeOf(9), KEY_V);
  EXPECT_EQ(evdevCodeOf(15), KEY_R);
  EXPECT_EQ(evdevCodeOf(7), KEY_X);
  EXPECT_EQ(evdevCodeOf(49), KEY_SPACE);
  EXPECT_EQ(evdevCodeOf(50), KEY_GRAVE);
}

TEST(VirtualKeyCodes, keepTheDigitsInTheirOwnUnorderedPlaces) {
  const std::map<std::uint32_t, int> digits = {{18, KEY_1}, {19, KEY_2}, {20, KEY_3}, {21, KEY_4}, {23, KEY_5},
                                               {22, KEY_6}, {26, KEY_7}, {28, KEY_8}, {25, KEY_9}, {29, KEY_0}};
  for (const auto& [code, key] : digits) EXPECT_EQ(evdevCodeOf(code), key) << code;
}

TEST(VirtualKeyCodes, coverTheFunctionKeys) {
  const std::map<std::uint32_t, int> functionKeys = {
      {122, KEY_F1},  {120, KEY_F2},  {99, KEY_F3},   {118, KEY_F4},  {96, KEY_F5},   {97, KEY_F6},   {98, KEY_F7},
      {100, KEY_F8},  {101, KEY_F9},  {109, KEY_F10}, {103, KEY_F11}, {111, KEY_F12}, {105, KEY_F13}, {107, KEY_F14},
      {113, KEY_F15}, {106, KEY_F16}, {64, KEY_F17},  {79, KEY_F18},  {80, KEY_F19},  {90, KEY_F20}};
  for (const auto& [code, key] : functionKeys) EXPECT_EQ(evdevCodeOf(code), key) << code;
}

TEST(VirtualKeyCodes, coverTheKeypad) {
  const std::map<std::uint32_t, int> keypad = {
      {65, KEY_KPDOT},   {67, KEY_KPASTERISK}, {69, KEY_KPPLUS},  {71, KEY_NUMLOCK}, {75, KEY_KPSLASH},
      {76, KEY_KPENTER}, {78, KEY_KPMINUS},    {81, KEY_KPEQUAL}, {82, KEY_KP0},     {83, KEY_KP1},
      {84, KEY_KP2},     {85, KEY_KP3},        {86, KEY_KP4},     {87, KEY_KP5},     {88, KEY_KP6},
      {89, KEY_KP7},     {91, KEY_KP8},        {92, KEY_KP9}};
  for (const auto& [code, key] : keypad) EXPECT_EQ(evdevCodeOf(code), key) << code;
}

TEST(VirtualKeyCodes, coverTheKeysOfIsoAndJapaneseKeyboards) {
  EXPECT_EQ(evdevCodeOf(10), KEY_102ND);
  EXPECT_EQ(evdevCodeOf(93), KEY_YEN);
  EXPECT_EQ(evdevCodeOf(94), KEY_RO);
  EXPECT_EQ(evdevCodeOf(95), KEY_KPCOMMA);
  EXPECT_EQ(evdevCodeOf(102), KEY_HANJA);
  EXPECT_EQ(evdevCodeOf(104), KEY_HANGEUL);
}

TEST(VirtualKeyCodes, coverNavigationAndModifiers) {
  const std::map<std::uint32_t, int> keys = {
      {115, KEY_HOME},    {119, KEY_END},      {116, KEY_PAGEUP},   {121, KEY_PAGEDOWN},  {117, KEY_DELETE},
      {114, KEY_INSERT},  {123, KEY_LEFT},     {124, KEY_RIGHT},    {125, KEY_DOWN},      {126, KEY_UP},
      {55, KEY_LEFTMETA}, {54, KEY_RIGHTMETA}, {56, KEY_LEFTSHIFT}, {60, KEY_RIGHTSHIFT}, {58, KEY_LEFTALT},
      {61, KEY_RIGHTALT}, {59, KEY_LEFTCTRL},  {62, KEY_RIGHTCTRL}, {57, KEY_CAPSLOCK},   {51, KEY_BACKSPACE}};
  for (const auto& [code, key] : keys) EXPECT_EQ(evdevCodeOf(code), key) << code;
}

TEST(VirtualKeyCodes, giveEachKeyToOneCodeOnly) {
  std::set<std::uint16_t> seen;
  for (std::uint32_t code = 0; code < 0x80; ++code) {
    if (const auto key = evdevCodeOf(code)) {
      EXPECT_TRUE(seen.insert(*key).second) << code;
    }
  }
  EXPECT_EQ(seen.size(), 120u);
}

TEST(VirtualKeyCodes, haveHolesAndAnEnd) {
  for (const std::uint32_t code : {52u, 66u, 68u, 70u, 77u, 108u, 112u, 127u, 128u, 0xFFFFu, 0xFFFFFFFFu}) {
    EXPECT_FALSE(evdevCodeOf(code)) << code;
    EXPECT_FALSE(keycodeOf(code)) << code;
  }
}

TEST(VirtualKeyCodes, areEightMoreOnTheServer) {
  EXPECT_EQ(keycodeOf(0), KEY_A + 8);
  EXPECT_EQ(keycodeOf(90), KEY_F20 + 8);
}

TEST(VirtualKeyCodes, nameNoServerKeyForTheFunctionKeyPastTheProtocol) {
  EXPECT_EQ(evdevCodeOf(63), KEY_FN);
  EXPECT_FALSE(keycodeOf(63));
}

TEST(VirtualKeyCodes, areFoundByTheServersNumberOfTheirKey) {
  for (std::uint32_t code = 0; code < 0x80; ++code) {
    if (const auto keycode = keycodeOf(code)) {
      EXPECT_EQ(virtualKeyCodeOf(*keycode), code);
    }
  }
}

TEST(VirtualKeyCodes, areNotThereForOtherKeysOfTheServer) {
  EXPECT_FALSE(virtualKeyCodeOf(0));
  EXPECT_FALSE(virtualKeyCodeOf(8));
  EXPECT_FALSE(virtualKeyCodeOf(KEY_CALC + 8));
  EXPECT_FALSE(virtualKeyCodeOf(0xFFFFFFFF));
}

}  // namespace
}  // namespace tavelle::x11
