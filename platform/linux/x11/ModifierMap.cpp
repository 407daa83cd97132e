#include "platform/linux/x11/ModifierMap.h"

#include "platform/CarbonEvents.h"

#include <xkbcommon/xkbcommon-keysyms.h>

#include <algorithm>
#include <cstddef>
#include <span>

namespace tavelle::x11 {
namespace {

constexpr int modifierCount = 8;

bool hasAny(std::span<const xcb_keysym_t> symbols, std::initializer_list<xcb_keysym_t> wanted) {
  return std::ranges::any_of(symbols, [&](auto symbol) { return std::ranges::find(wanted, symbol) != wanted.end(); });
}

}  // namespace

ModifierMap ModifierMap::read(Connection& connection) {
  const auto* const setup = xcb_get_setup(connection);
  const auto first = setup->min_keycode;
  const auto keyCount = static_cast<std::uint8_t>(setup->max_keycode - first + 1);
  const auto modifiersCookie = xcb_get_modifier_mapping(connection);
  const auto symbolsCookie = xcb_get_keyboard_mapping(connection, first, keyCount);
  const XcbReply<xcb_get_modifier_mapping_reply_t> modifiers{
      xcb_get_modifier_mapping_reply(connection, modifiersCookie, nullptr)};
  const XcbReply<xcb_get_keyboard_mapping_reply_t> symbols{
      xcb_get_keyboard_mapping_reply(connection, symbolsCookie, nullptr)};

  ModifierMap map;
  if (modifiers && symbols) {
    const auto* const keys = xcb_get_modifier_mapping_keycodes(modifiers.get());
    const auto* const table = xcb_get_keyboard_mapping_keysyms(symbols.get());
    const auto perKey = symbols->keysyms_per_keycode;
    for (int i = 0; i < modifierCount * modifiers->keycodes_per_modifier; ++i) {
      if (keys[i] < first) continue;  // 0 fills up the row
      const auto mask = static_cast<std::uint16_t>(1 << i / modifiers->keycodes_per_modifier);
      map.learn(mask, keys[i], table + std::ptrdiff_t{keys[i] - first} * perKey, perKey);
    }
  }
  if (map.alt_ == 0) map.alt_ = XCB_MOD_MASK_1;
  if (map.super_ == 0) map.super_ = XCB_MOD_MASK_4;
  // A Caps Lock key that was made a Control key stands in Control's row: no lock any more.
  map.locks_ &= static_cast<std::uint16_t>(~(XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_CONTROL | map.alt_ | map.super_));
  for (const auto& row : map.rows_) {
    if ((row.mask & map.locks_) == 0) map.keys_ |= row.keys;
  }
  return map;
}

void ModifierMap::learn(std::uint16_t mask, xcb_keycode_t key, const xcb_keysym_t* symbols, std::uint8_t count) {
  const std::span all{symbols, count};
  auto row = std::ranges::find(rows_, mask, &Row::mask);
  if (row == rows_.end()) row = rows_.insert(rows_.end(), {mask, {}});
  row->keys.set(key);

  if (hasAny(all, {XKB_KEY_Num_Lock, XKB_KEY_Scroll_Lock, XKB_KEY_Caps_Lock, XKB_KEY_Shift_Lock})) locks_ |= mask;
  if (alt_ == 0 && hasAny(all, {XKB_KEY_Alt_L, XKB_KEY_Alt_R})) alt_ = mask;
  if (super_ == 0 && hasAny(all, {XKB_KEY_Super_L, XKB_KEY_Super_R})) super_ = mask;

  // The left key by its own symbol; any key of the row rather than none.
  const auto prefer = [&](xcb_keycode_t& chosen, xcb_keysym_t symbol) {
    if (chosen == 0 || (count > 0 && all[0] == symbol)) chosen = key;
  };
  if (mask == XCB_MOD_MASK_SHIFT) prefer(shiftKeycode_, XKB_KEY_Shift_L);
  if (mask == XCB_MOD_MASK_CONTROL) prefer(controlKeycode_, XKB_KEY_Control_L);
  if (mask == alt_) prefer(altKeycode_, XKB_KEY_Alt_L);
}

std::uint16_t ModifierMap::maskOf(std::uint32_t carbonModifiers) const {
  unsigned int mask = 0;
  if (carbonModifiers & cmdKey) mask |= super_;
  if (carbonModifiers & optionKey) mask |= alt_;
  if (carbonModifiers & shiftKey) mask |= XCB_MOD_MASK_SHIFT;
  if (carbonModifiers & controlKey) mask |= XCB_MOD_MASK_CONTROL;
  return static_cast<std::uint16_t>(mask);
}

std::vector<std::uint16_t> ModifierMap::lockCombinations() const {
  std::vector<std::uint16_t> combinations;
  for (std::uint16_t mask = 0; mask < 1 << modifierCount; ++mask) {
    if ((mask & ~locks_) == 0) combinations.push_back(mask);
  }
  return combinations;
}

std::uint16_t ModifierMap::maskOfKeys(const KeySet& held) const {
  unsigned int mask = 0;
  for (const auto& row : rows_) {
    if ((row.keys & held).any()) mask |= row.mask;
  }
  return static_cast<std::uint16_t>(mask & ~unsigned{locks_});
}

KeySet ModifierMap::menuKeys() const {
  KeySet keys;
  for (const auto& row : rows_) {
    if (row.mask & (alt_ | super_)) keys |= row.keys;
  }
  return keys;
}

}  // namespace tavelle::x11
