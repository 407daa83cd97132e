#include "tests/platform/x11/KeyWindow.h"

#include "platform/FatalError.h"
#include "platform/linux/x11/XcbReply.h"

#include <xcb/xinput.h>
#include <xkbcommon/xkbcommon-x11.h>
// xkb.h names a field `explicit`.
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit

#include <algorithm>
#include <array>

namespace tavelle::x11::tests {
namespace {

constexpr std::uint16_t keymapParts = XCB_XKB_MAP_PART_KEY_TYPES | XCB_XKB_MAP_PART_KEY_SYMS |
                                      XCB_XKB_MAP_PART_MODIFIER_MAP | XCB_XKB_MAP_PART_VIRTUAL_MODS |
                                      XCB_XKB_MAP_PART_VIRTUAL_MOD_MAP;

bool isModifier(xkb_keysym_t symbol) {
  return (symbol >= XKB_KEY_Shift_L && symbol <= XKB_KEY_Hyper_R) || symbol == XKB_KEY_Num_Lock ||
         symbol == XKB_KEY_ISO_Level3_Shift;
}

bool isLatin(xkb_keysym_t symbol) {
  return symbol > 0x20 && symbol < 0x100;
}

}  // namespace

KeyWindow::KeyWindow(const std::string& windowClass)
    : xcb_(xcb_connect(nullptr, nullptr)), context_(xkb_context_new(XKB_CONTEXT_NO_DEFAULT_INCLUDES)) {
  auto* const xcb = xcb_.get();
  if (xcb_connection_has_error(xcb)) fatalError("no connection for the test's window");
  xkb_x11_setup_xkb_extension(xcb, 1, 0, XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, &xkbEvent_, nullptr);
  constexpr std::uint16_t which = XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY;
  xcb_xkb_select_events(xcb, XCB_XKB_ID_USE_CORE_KBD, which, 0, which, keymapParts, keymapParts, nullptr);
  xcb_discard_reply(xcb, xcb_input_xi_query_version(xcb, 2, 2).sequence);
  keyboards_ = keyboards();

  const auto* const screen = xcb_setup_roots_iterator(xcb_get_setup(xcb)).data;
  root_ = screen->root;
  window_ = xcb_generate_id(xcb);
  const std::uint32_t mask = XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE | XCB_EVENT_MASK_FOCUS_CHANGE;
  xcb_create_window(xcb, XCB_COPY_FROM_PARENT, window_, root_, 0, 0, 400, 300, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                    XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &mask);
  const std::string both = windowClass + '\0' + windowClass + '\0';
  xcb_change_property(xcb, XCB_PROP_MODE_REPLACE, window_, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8,
                      static_cast<std::uint32_t>(both.size()), both.data());
  takeFocus();
  source_ = makeSource(
      "window", [this] { serve(); }, xcb_get_file_descriptor(xcb));
  serve();
}

KeyWindow::~KeyWindow() = default;

void KeyWindow::takeFocus() {
  xcb_map_window(xcb_.get(), window_);
  xcb_set_input_focus(xcb_.get(), XCB_INPUT_FOCUS_PARENT, window_, XCB_CURRENT_TIME);
  const XcbReply<xcb_get_input_focus_reply_t> focus{
      xcb_get_input_focus_reply(xcb_.get(), xcb_get_input_focus(xcb_.get()), nullptr)};
  if (!focus || focus->focus != window_) fatalError("the test's window did not get the focus");
}

void KeyWindow::serve() {
  while (const XcbReply<xcb_generic_event_t> event{xcb_poll_for_event(xcb_.get())}) {
    const int type = event->response_type & 0x7F;
    if (type == XCB_KEY_PRESS) {
      pressed(reinterpret_cast<const xcb_key_press_event_t&>(*event));
    } else if (type == XCB_KEY_RELEASE) {
      keys_.push_back("-" + std::to_string(reinterpret_cast<const xcb_key_release_event_t&>(*event).detail));
    } else if (type == XCB_FOCUS_OUT) {
      if (reinterpret_cast<const xcb_focus_out_event_t&>(*event).mode == XCB_NOTIFY_MODE_GRAB) ++grabCount_;
    } else if (type == xkbEvent_) {
      keymap_.reset();
    }
  }
}

void KeyWindow::pressed(const xcb_key_press_event_t& press) {
  keys_.push_back("+" + std::to_string(press.detail));
  const auto symbol = symbolOf(press);
  if (isModifier(symbol)) return;
  std::string stroke;
  if (press.state & XCB_MOD_MASK_SHIFT) stroke += "Shift+";
  if (press.state & XCB_MOD_MASK_CONTROL) stroke += "Control+";
  if (press.state & XCB_MOD_MASK_1) stroke += "Alt+";
  if (press.state & XCB_MOD_MASK_4) stroke += "Super+";
  std::array<char, 64> name{};
  xkb_keysym_get_name(symbol, name.data(), name.size());
  strokes_.push_back(stroke + name.data());
}

xkb_keysym_t KeyWindow::symbolOf(const xcb_key_press_event_t& press) {
  if (!keymap_) {
    keymap_.reset(xkb_x11_keymap_new_from_device(
        context_.get(), xcb_.get(), xkb_x11_get_core_keyboard_device_id(xcb_.get()), XKB_KEYMAP_COMPILE_NO_FLAGS));
  }
  const auto inGroup = [&](xkb_layout_index_t group) -> xkb_keysym_t {
    const xkb_keysym_t* symbols = nullptr;
    const int count = xkb_keymap_key_get_syms_by_level(keymap_.get(), press.detail, group, 0, &symbols);
    return count == 1 ? symbols[0] : xkb_keysym_t{XKB_KEY_NoSymbol};
  };
  const auto active = inGroup(press.state >> 13 & 3u);
  if (isLatin(active)) return active;
  for (xkb_layout_index_t group = 0; group < xkb_keymap_num_layouts(keymap_.get()); ++group) {
    if (isLatin(inGroup(group))) return inGroup(group);
  }
  return active;
}

const std::vector<std::string>& KeyWindow::strokes() {
  serve();
  return strokes_;
}

const std::vector<std::string>& KeyWindow::keys() {
  serve();
  return keys_;
}

int KeyWindow::strokeCount(const std::string& stroke) {
  return static_cast<int>(std::ranges::count(strokes(), stroke));
}

int KeyWindow::grabCount() {
  serve();
  return grabCount_;
}

void KeyWindow::forget() {
  serve();
  grabCount_ = 0;
  strokes_.clear();
  keys_.clear();
}

bool KeyWindow::grabKeyboard() {
  const XcbReply<xcb_grab_keyboard_reply_t> grab{xcb_grab_keyboard_reply(
      xcb_.get(), xcb_grab_keyboard(xcb_.get(), 0, window_, XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
      nullptr)};
  return grab && grab->status == XCB_GRAB_STATUS_SUCCESS;
}

void KeyWindow::ungrabKeyboard() {
  xcb_ungrab_keyboard(xcb_.get(), XCB_CURRENT_TIME);
  xcb_flush(xcb_.get());
}

bool KeyWindow::grabKey(xcb_keycode_t key, std::uint16_t modifiers) {
  const auto cookie =
      xcb_grab_key_checked(xcb_.get(), 0, root_, modifiers, key, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
  const XcbReply<xcb_generic_error_t> error{xcb_request_check(xcb_.get(), cookie)};
  return error == nullptr;
}

KeySet KeyWindow::keysDown() const {
  const XcbReply<xcb_query_keymap_reply_t> reply{
      xcb_query_keymap_reply(xcb_.get(), xcb_query_keymap(xcb_.get()), nullptr)};
  if (!reply) fatalError("the server does not tell its keys");
  return keySetOf(reply->keys);
}

std::vector<std::uint8_t> KeyWindow::keyboards() const {
  std::vector<std::uint8_t> found;
  const XcbReply<xcb_input_xi_query_device_reply_t> reply{xcb_input_xi_query_device_reply(
      xcb_.get(), xcb_input_xi_query_device(xcb_.get(), XCB_INPUT_DEVICE_ALL), nullptr)};
  if (!reply) fatalError("the server does not tell its devices");
  for (auto at = xcb_input_xi_query_device_infos_iterator(reply.get()); at.rem > 0;
       xcb_input_xi_device_info_next(&at)) {
    if (at.data->type == XCB_INPUT_DEVICE_TYPE_SLAVE_KEYBOARD) {
      found.push_back(static_cast<std::uint8_t>(at.data->deviceid));
    }
  }
  return found;
}

KeySet KeyWindow::keysDownOnDevices() const {
  KeySet keys;
  for (const auto keyboard : keyboards_) {
    const XcbReply<xcb_input_query_device_state_reply_t> state{
        xcb_input_query_device_state_reply(xcb_.get(), xcb_input_query_device_state(xcb_.get(), keyboard), nullptr)};
    if (!state) fatalError("the server does not tell a keyboard's keys");
    for (auto at = xcb_input_query_device_state_classes_iterator(state.get()); at.rem > 0;
         xcb_input_input_state_next(&at)) {
      if (at.data->class_id != XCB_INPUT_INPUT_CLASS_KEY) continue;
      keys |= keySetOf(reinterpret_cast<const xcb_input_key_state_t*>(at.data)->keys);
    }
  }
  return keys;
}

std::uint16_t KeyWindow::modifiers() const {
  const XcbReply<xcb_query_pointer_reply_t> pointer{
      xcb_query_pointer_reply(xcb_.get(), xcb_query_pointer(xcb_.get(), root_), nullptr)};
  if (!pointer) fatalError("the server does not tell its modifiers");
  return pointer->mask & 0xFF;
}

}  // namespace tavelle::x11::tests
