#include "platform/linux/x11/InputDevices.h"

#include <xcb/xinput.h>

#include <span>
#include <string_view>

namespace tavelle::x11 {
namespace {

constexpr std::uint8_t keyClass = XCB_INPUT_INPUT_CLASS_KEY;

std::string_view nameOf(const xcb_input_xi_device_info_t& device) {
  return {xcb_input_xi_device_info_name(&device),
          static_cast<std::size_t>(xcb_input_xi_device_info_name_length(&device))};
}

KeySet keysDownIn(const xcb_input_query_device_state_reply_t& state) {
  KeySet keys;
  for (auto at = xcb_input_query_device_state_classes_iterator(&state); at.rem > 0; xcb_input_input_state_next(&at)) {
    if (at.data->class_id == keyClass) {
      keys |= keySetOf(reinterpret_cast<const xcb_input_key_state_t*>(at.data)->keys);
    }
  }
  return keys;
}

}  // namespace

InputDevices::InputDevices(Connection& connection) : connection_(connection) {
  // The version that we speak decides what the server tells: raw events past other clients' grabs since 2.1.
  xcb_discard_reply(connection_, xcb_input_xi_query_version(connection_, 2, 2).sequence);
  refresh();
}

void InputDevices::refresh() {
  keyboards_.clear();
  const auto cookie = xcb_input_xi_query_device(connection_, XCB_INPUT_DEVICE_ALL);
  const XcbReply<xcb_input_xi_query_device_reply_t> reply{
      xcb_input_xi_query_device_reply(connection_, cookie, nullptr)};
  if (!reply) return;
  bool isCoreKnown = false;
  for (auto at = xcb_input_xi_query_device_infos_iterator(reply.get()); at.rem > 0;
       xcb_input_xi_device_info_next(&at)) {
    const auto& device = *at.data;
    if (device.type == XCB_INPUT_DEVICE_TYPE_MASTER_KEYBOARD && !isCoreKnown) {
      isCoreKnown = true;  // the first is the one that core requests mean
      coreKeyboard_ = syntheticKeyboard_ = device.deviceid;
    }
    if (device.type != XCB_INPUT_DEVICE_TYPE_SLAVE_KEYBOARD || !device.enabled || device.deviceid > 255) continue;
    keyboards_.push_back(static_cast<std::uint8_t>(device.deviceid));
    if (device.attachment == coreKeyboard_ && nameOf(device).ends_with("XTEST keyboard")) {
      syntheticKeyboard_ = device.deviceid;
    }
  }
}

KeySet InputDevices::keysDown() const {
  std::vector<xcb_input_query_device_state_cookie_t> cookies;
  cookies.reserve(keyboards_.size());
  for (const auto keyboard : keyboards_) cookies.push_back(xcb_input_query_device_state(connection_, keyboard));
  KeySet keys;
  for (const auto cookie : cookies) {
    // A keyboard that was unplugged holds nothing down: its error is as good as that answer.
    const XcbReply<xcb_input_query_device_state_reply_t> state{
        xcb_input_query_device_state_reply(connection_, cookie, nullptr)};
    if (state) keys |= keysDownIn(*state);
  }
  return keys;
}

}  // namespace tavelle::x11
