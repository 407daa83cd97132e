#include "platform/linux/x11/LentKeys.h"

#include <algorithm>
#include <array>

namespace tavelle::x11 {
namespace {

constexpr gint64 never = -1;
constexpr gint64 lendingTime = gint64{5} * G_USEC_PER_SEC;

}  // namespace

LentKeys::LentKeys(Connection& connection, Keyboard& keyboard)
    : connection_(connection),
      keyboard_(keyboard),
      giveBackSource_(makeSource("X11 lent keys", [this] { giveBack(); })) {}

LentKeys::~LentKeys() {
  giveBack();
}

std::optional<xcb_keycode_t> LentKeys::lend(char letter) {
  const auto& spare = keyboard_.layout().spareKeys();
  // From the end: the low codes are those of keys that keyboards really have.
  for (std::size_t key = spare.size(); key-- > 0;) {
    if (!spare[key]) continue;
    const auto keycode = static_cast<xcb_keycode_t>(key);
    const std::array<xcb_keysym_t, 2> symbols = {static_cast<xcb_keysym_t>(letter),
                                                 static_cast<xcb_keysym_t>(letter - 'a' + 'A')};
    xcb_change_keyboard_mapping(connection_, 1, keycode, symbols.size(), symbols.data());
    keyboard_.setKey(letter, keycode);
    lent_[letter] = keycode;
    giveBackLater();
    return keycode;
  }
  return std::nullopt;
}

void LentKeys::used(xcb_keycode_t key) {
  if (std::ranges::any_of(lent_, [key](const auto& lent) { return lent.second == key; })) giveBackLater();
}

void LentKeys::giveBackLater() {
  g_source_set_ready_time(giveBackSource_.get(), g_get_monotonic_time() + lendingTime);
}

void LentKeys::giveBack() {
  g_source_set_ready_time(giveBackSource_.get(), never);
  for (const auto& [letter, key] : lent_) {
    const XcbReply<xcb_get_keyboard_mapping_reply_t> mapping{
        xcb_get_keyboard_mapping_reply(connection_, xcb_get_keyboard_mapping(connection_, key, 1), nullptr)};
    // A keymap that was loaded since may need the key for something else.
    const bool isStillOurs = mapping && mapping->keysyms_per_keycode > 0 &&
                             xcb_get_keyboard_mapping_keysyms(mapping.get())[0] == static_cast<xcb_keysym_t>(letter);
    if (!isStillOurs) continue;
    const xcb_keysym_t none = XCB_NO_SYMBOL;
    // Waits for the server, which may forget what a client asked for last when the client leaves.
    const auto cookie = xcb_change_keyboard_mapping_checked(connection_, 1, key, 1, &none);
    const XcbReply<xcb_generic_error_t> error{xcb_request_check(connection_, cookie)};
  }
  if (lent_.empty()) return;
  lent_.clear();
  keyboard_.forgetLayout();
}

}  // namespace tavelle::x11
