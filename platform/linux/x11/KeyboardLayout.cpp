#include "platform/linux/x11/KeyboardLayout.h"

#include <xkbcommon/xkbcommon-x11.h>
#include <xkbcommon/xkbcommon.h>

#include <algorithm>
#include <memory>

namespace tavelle::x11 {
namespace {

struct Unref {
  void operator()(xkb_context* context) const { xkb_context_unref(context); }
  void operator()(xkb_keymap* keymap) const { xkb_keymap_unref(keymap); }
};

bool types(xkb_keymap* keymap, xkb_keycode_t key, xkb_layout_index_t group, char letter) {
  const xkb_keysym_t* symbols = nullptr;
  const int count = xkb_keymap_key_get_syms_by_level(keymap, key, group, 0, &symbols);
  return count == 1 && symbols[0] == static_cast<xkb_keysym_t>(letter);
}

}  // namespace

KeyboardLayout KeyboardLayout::read(Connection& connection, std::uint8_t keyboard) {
  KeyboardLayout layout;
  // No include paths: the keymap comes from the server, never from files.
  const std::unique_ptr<xkb_context, Unref> context{xkb_context_new(XKB_CONTEXT_NO_DEFAULT_INCLUDES)};
  if (!context) return layout;
  xkb_context_set_log_level(context.get(), XKB_LOG_LEVEL_CRITICAL);
  const std::unique_ptr<xkb_keymap, Unref> keymap{
      xkb_x11_keymap_new_from_device(context.get(), connection, keyboard, XKB_KEYMAP_COMPILE_NO_FLAGS)};
  if (!keymap) return layout;

  const auto groups = std::min<xkb_layout_index_t>(xkb_keymap_num_layouts(keymap.get()), groupLimit);
  const auto last = std::min<xkb_keycode_t>(xkb_keymap_max_keycode(keymap.get()), 255);
  for (auto key = xkb_keymap_min_keycode(keymap.get()); key <= last; ++key) {
    if (xkb_keymap_num_layouts_for_key(keymap.get(), key) == 0) layout.spareKeys_.set(key);
    for (auto& letter : layout.letters_) {
      for (xkb_layout_index_t group = 0; group < groups; ++group) {
        auto& chosen = letter.keys.at(group);
        const bool isBetter = chosen == 0 || key == letter.usual;
        if (isBetter && types(keymap.get(), key, group, letter.letter)) chosen = static_cast<xcb_keycode_t>(key);
      }
    }
  }
  return layout;
}

void KeyboardLayout::setKey(char letter, xcb_keycode_t key) {
  spareKeys_.reset(key);
  const auto known = std::ranges::find(letters_, letter, &Letter::letter);
  if (known != letters_.end()) known->keys.fill(key);
}

std::optional<xcb_keycode_t> KeyboardLayout::keyFor(char letter, std::uint8_t group) const {
  const auto known = std::ranges::find(letters_, letter, &Letter::letter);
  if (known == letters_.end()) return std::nullopt;
  if (group < groupLimit && known->keys.at(group) != 0) return known->keys.at(group);
  for (const auto key : known->keys) {
    if (key != 0) return key;
  }
  return std::nullopt;
}

}  // namespace tavelle::x11
