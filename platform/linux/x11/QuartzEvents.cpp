#include "platform/linux/x11/QuartzEvents.h"

#include "platform/linux/VirtualKeyCodes.h"
#include "platform/linux/x11/FocusWindow.h"

// xkb.h names a field `explicit`.
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit
#include <xcb/xtest.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace tavelle::x11 {
namespace {

// The platform's other modifier flags (CGEventTypes.h).
constexpr std::uint64_t eventFlagMaskShift = 0x20000;
constexpr std::uint64_t eventFlagMaskControl = 0x40000;
constexpr std::uint64_t eventFlagMaskAlternate = 0x80000;
constexpr std::uint64_t allFlags =
    eventFlagMaskShift | eventFlagMaskControl | eventFlagMaskAlternate | eventFlagMaskCommand;

}  // namespace

struct X11QuartzEvents::Event : KeyboardEvent {
  Event(std::uint16_t code, bool goesDown) : keyCode(code), keyDown(goesDown) {}

  std::optional<EditingKey> editingKey() const {
    if ((flags & allFlags) != eventFlagMaskCommand) return std::nullopt;
    if (keyCode == kVK_ANSI_C) return EditingKey::copy;
    if (keyCode == kVK_ANSI_V) return EditingKey::paste;
    return std::nullopt;
  }

  const std::uint16_t keyCode;
  const bool keyDown;
  std::uint64_t flags = 0;
};

X11QuartzEvents::X11QuartzEvents(Connection& connection, Keyboard& keyboard, HeldKeys& heldKeys,
                                 PostedEditingKeys& posted)
    : connection_(connection),
      keyboard_(keyboard),
      heldKeys_(heldKeys),
      posted_(posted),
      lentKeys_(connection, keyboard) {}

std::unique_ptr<EventSource> X11QuartzEvents::createEventSource(EventSourceStateID) {
  if (!connection_.extension(xcb_test_id)) return nullptr;
  return std::make_unique<EventSource>();
}

std::unique_ptr<KeyboardEvent> X11QuartzEvents::createKeyboardEvent(EventSource*, std::uint16_t keyCode, bool keyDown) {
  if (!connection_.extension(xcb_test_id) || !keycodeOf(keyCode)) return nullptr;
  return std::make_unique<Event>(keyCode, keyDown);
}

void X11QuartzEvents::setFlags(KeyboardEvent& event, std::uint64_t flags) {
  static_cast<Event&>(event).flags = flags;
}

void X11QuartzEvents::post(EventTapLocation, const KeyboardEvent& posted) {
  const auto& event = static_cast<const Event&>(posted);
  const auto key = event.editingKey();
  if (!key) {
    postPlainKey(event);
  } else if (event.keyDown) {
    pressed_ = key;
  } else if (std::exchange(pressed_, std::nullopt) == key) {
    postEditingKey(*key);
  }
}

void X11QuartzEvents::repeat(const PostedEditingKey& posted) {
  if (posted.focus != XCB_WINDOW_NONE) postEditingKey(posted.key, posted.focus);
}

void X11QuartzEvents::postEditingKey(EditingKey key, std::optional<xcb_window_t> onlyTo) {
  const auto focusCookie = xcb_get_input_focus(connection_);
  const auto keysCookie = xcb_query_keymap(connection_);
  const auto stateCookie = xcb_xkb_get_state(connection_, XCB_XKB_ID_USE_CORE_KBD);
  const XcbReply<xcb_get_input_focus_reply_t> focus{xcb_get_input_focus_reply(connection_, focusCookie, nullptr)};
  const XcbReply<xcb_query_keymap_reply_t> keys{xcb_query_keymap_reply(connection_, keysCookie, nullptr)};
  const XcbReply<xcb_xkb_get_state_reply_t> state{xcb_xkb_get_state_reply(connection_, stateCookie, nullptr)};
  if (!focus || !keys || !state) return;
  const bool isWindow = focus->focus != XCB_INPUT_FOCUS_POINTER_ROOT && focus->focus != connection_.root();
  const auto window = isWindow ? focus->focus : xcb_window_t{XCB_WINDOW_NONE};
  if (onlyTo && *onlyTo != window) return;

  const auto editingKeys = editingKeysOf(connection_, windowOfKeys(connection_, focus->focus));
  if (editingKeys == EditingKeys::none) return;
  const auto keycode = keyFor(key == EditingKey::copy ? 'c' : 'v', state->group);
  if (!keycode) return;

  const auto& modifiers = keyboard_.modifiers();
  KeyStroke stroke{*keycode, {modifiers.controlKeycode()}, XCB_MOD_MASK_CONTROL};
  if (editingKeys == EditingKeys::controlShift) {
    stroke.modifierKeys.push_back(modifiers.shiftKeycode());
    stroke.modifiers |= XCB_MOD_MASK_SHIFT;
  }
  // Without its modifier the key would write over the selection.
  if (std::ranges::count(stroke.modifierKeys, xcb_keycode_t{0}) > 0) return;
  heldKeys_.send(stroke, keySetOf(keys->keys));
  posted_.send({key, window});
}

std::optional<xcb_keycode_t> X11QuartzEvents::keyFor(char letter, std::uint8_t group) {
  const auto key = keyboard_.layout().keyFor(letter, group);
  if (!key) return lentKeys_.lend(letter);
  lentKeys_.used(*key);
  return key;
}

void X11QuartzEvents::postPlainKey(const Event& event) {
  const auto& modifiers = keyboard_.modifiers();
  std::vector<xcb_keycode_t> keys;
  if (event.flags & (eventFlagMaskCommand | eventFlagMaskControl)) keys.push_back(modifiers.controlKeycode());
  if (event.flags & eventFlagMaskAlternate) keys.push_back(modifiers.altKeycode());
  if (event.flags & eventFlagMaskShift) keys.push_back(modifiers.shiftKeycode());
  std::erase(keys, xcb_keycode_t{0});
  keys.push_back(*keycodeOf(event.keyCode));
  const auto fake = [&](std::uint8_t type, xcb_keycode_t key) {
    xcb_test_fake_input(connection_, type, key, XCB_CURRENT_TIME, XCB_WINDOW_NONE, 0, 0, 0);
  };
  if (event.keyDown) {
    for (const auto key : keys) fake(XCB_KEY_PRESS, key);
  } else {
    for (auto key = keys.rbegin(); key != keys.rend(); ++key) fake(XCB_KEY_RELEASE, *key);
  }
  connection_.flush();
}

}  // namespace tavelle::x11
