#include "platform/linux/x11/Keyboard.h"

#include <xkbcommon/xkbcommon-x11.h>
// xkb.h names a field `explicit`.
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit
#include <xcb/xinput.h>
#include <xcb/xtest.h>

#include <utility>

namespace tavelle::x11 {
namespace {

constexpr gint64 immediately = 0;
constexpr gint64 never = -1;

// Asks for all the extensions at once, so that their answers cost one round trip and not three.
Connection& withExtensions(Connection& connection) {
  for (auto* const id : {&xcb_xkb_id, &xcb_input_id, &xcb_test_id}) xcb_prefetch_extension_data(connection, id);
  return connection;
}

}  // namespace

Keyboard::Keyboard(Connection& connection)
    : connection_(withExtensions(connection)),
      devices_(connection),
      refreshSource_(makeSource("X11 keyboard", [this] { refresh(); })),
      events_(connection.events().subscribe([this](const auto& event) { received(event); })) {
  // Below the connection's own source: whatever has come is dealt with first, and a burst of changes is read once.
  g_source_set_priority(refreshSource_.get(), G_PRIORITY_DEFAULT_IDLE);
  xkb_x11_setup_xkb_extension(connection_, XKB_X11_MIN_MAJOR_XKB_VERSION, XKB_X11_MIN_MINOR_XKB_VERSION,
                              XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, &xkbEvent_, nullptr);
  if (const auto* const input = connection_.extension(xcb_input_id)) inputOpcode_ = input->major_opcode;
  selectEvents();
  // A key that repeats is then pressed again and again, and let go once.
  xcb_discard_reply(connection_, xcb_xkb_per_client_flags(connection_, XCB_XKB_ID_USE_CORE_KBD,
                                                          XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT,
                                                          XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT, 0, 0, 0)
                                     .sequence);
  modifiers_ = ModifierMap::read(connection_);
  refreshSoon();
}

void Keyboard::selectEvents() {
  constexpr std::uint16_t which = XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY;
  constexpr std::uint16_t parts = XCB_XKB_MAP_PART_KEY_TYPES | XCB_XKB_MAP_PART_KEY_SYMS |
                                  XCB_XKB_MAP_PART_MODIFIER_MAP | XCB_XKB_MAP_PART_VIRTUAL_MODS |
                                  XCB_XKB_MAP_PART_VIRTUAL_MOD_MAP;
  xcb_xkb_select_events(connection_, XCB_XKB_ID_USE_CORE_KBD, which, 0, which, parts, parts, nullptr);

  struct {
    xcb_input_event_mask_t head;
    std::uint32_t mask;
  } hierarchy = {{XCB_INPUT_DEVICE_ALL, 1}, XCB_INPUT_XI_EVENT_MASK_HIERARCHY};
  xcb_input_xi_select_events(connection_, connection_.root(), 1, &hierarchy.head);
}

const KeyboardLayout& Keyboard::layout() {
  if (isLayoutStale_) {
    isLayoutStale_ = false;
    layout_ = KeyboardLayout::read(connection_, static_cast<std::uint8_t>(devices_.syntheticKeyboard()));
  }
  return layout_;
}

void Keyboard::setKey(char letter, xcb_keycode_t key) {
  layout_.setKey(letter, key);
}

void Keyboard::forgetLayout() {
  isLayoutStale_ = true;
  refreshSoon();
}

void Keyboard::received(const xcb_generic_event_t& event) {
  const auto type = Connection::typeOf(event);
  if (type == XCB_MAPPING_NOTIFY) {
    areModifiersStale_ = true;
    forgetLayout();
  } else if (type == xkbEvent_) {
    // Both events have the device in the same place. The core keyboard takes over another device's keymap whenever the
    // person changes from one device to another, synthetic keys included: then only the modifiers may differ.
    const auto device = Connection::as<xcb_xkb_map_notify_event_t>(event).deviceID;
    if (device == devices_.coreKeyboard()) {
      areModifiersStale_ = true;
      refreshSoon();
    }
    if (device == devices_.syntheticKeyboard()) forgetLayout();
  } else if (type == XCB_GE_GENERIC) {
    const auto& generic = Connection::as<xcb_ge_generic_event_t>(event);
    if (generic.extension == inputOpcode_ && generic.event_type == XCB_INPUT_HIERARCHY) {
      areDevicesStale_ = true;
      refreshSoon();
    }
  }
}

void Keyboard::refreshSoon() {
  g_source_set_ready_time(refreshSource_.get(), immediately);
}

void Keyboard::refresh() {
  g_source_set_ready_time(refreshSource_.get(), never);
  if (std::exchange(areDevicesStale_, false)) devices_.refresh();
  if (std::exchange(areModifiersStale_, false)) {
    auto read = ModifierMap::read(connection_);
    if (read != modifiers_) {
      modifiers_ = std::move(read);
      modifiersChanged_.send();
    }
  }
  layout();
}

}  // namespace tavelle::x11
