#include "Keyboard.h"

#include "benchmarks/programs/shared/Clock.h"

#include <xcb/xinput.h>
#include <xcb/xtest.h>

#include <bit>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace tavelle::bench {
namespace {

constexpr std::uint8_t controlKey = 37;
constexpr std::uint8_t altKey = 64;
constexpr std::int64_t nanosecondsPerMicrosecond = 1000;

bool isPhysical(const xcb_input_xi_device_info_t& device) {
  const std::string_view name{xcb_input_xi_device_info_name(&device),
                              static_cast<std::size_t>(xcb_input_xi_device_info_name_length(&device))};
  return device.type == XCB_INPUT_DEVICE_TYPE_SLAVE_KEYBOARD && !name.ends_with("XTEST keyboard");
}

}  // namespace

Keyboard::Keyboard(const Display& display) : display_(display) {
  firstEvent_ = xcb_get_extension_data(display, &xcb_input_id)->first_event;
  const XcbReply<xcb_input_xi_query_version_reply_t> version{
      xcb_input_xi_query_version_reply(display, xcb_input_xi_query_version(display, 2, 2), nullptr)};
  const XcbReply<xcb_input_xi_query_device_reply_t> devices{
      xcb_input_xi_query_device_reply(display, xcb_input_xi_query_device(display, XCB_INPUT_DEVICE_ALL), nullptr)};
  if (devices) {
    for (auto at = xcb_input_xi_query_device_infos_iterator(devices.get()); at.rem > 0;
         xcb_input_xi_device_info_next(&at)) {
      if (isPhysical(*at.data)) device_ = at.data->deviceid;
    }
  }
  if (device_ == 0) {
    std::fputs("observer: the X server has no keyboard of its own\n", stderr);
    std::exit(EXIT_FAILURE);
  }
}

void Keyboard::send(std::uint8_t key, bool isDown) {
  const int type = firstEvent_ + (isDown ? XCB_INPUT_DEVICE_KEY_PRESS : XCB_INPUT_DEVICE_KEY_RELEASE);
  xcb_test_fake_input(display_, static_cast<std::uint8_t>(type), key, XCB_CURRENT_TIME, XCB_WINDOW_NONE, 0, 0,
                      static_cast<std::uint8_t>(device_));
}

std::int64_t Keyboard::press(std::uint8_t key, std::int64_t hold, std::int64_t lag) {
  send(controlKey, true);
  send(altKey, true);
  display_.sync();
  const auto pressed = now();
  send(key, true);
  display_.flush();
  const auto keyUp = pressed + hold * nanosecondsPerMicrosecond;
  const auto modifiersUp = keyUp + lag * nanosecondsPerMicrosecond;
  releases_.insert(releases_.end(), {{keyUp, key}, {modifiersUp, altKey}, {modifiersUp, controlKey}});
  return pressed;
}

bool Keyboard::releaseDue() {
  if (releases_.empty()) return false;
  while (!releases_.empty() && releases_.front().at <= now()) {
    send(releases_.front().key, false);
    releases_.pop_front();
  }
  display_.flush();
  return releases_.empty();
}

std::optional<int> Keyboard::untilNextRelease() const {
  if (releases_.empty()) return std::nullopt;
  const auto left = releases_.front().at - now();
  return left <= 0 ? 0 : static_cast<int>(left / 1'000'000) + 1;
}

int Keyboard::keysDown() const {
  const XcbReply<xcb_query_keymap_reply_t> keymap{
      xcb_query_keymap_reply(display_, xcb_query_keymap(display_), nullptr)};
  int count = 0;
  if (keymap) {
    for (const auto byte : keymap->keys) count += std::popcount(byte);
  }
  return count;
}

void Keyboard::releaseEverything() {
  const XcbReply<xcb_query_keymap_reply_t> keymap{
      xcb_query_keymap_reply(display_, xcb_query_keymap(display_), nullptr)};
  for (int key = 8; keymap && key < 256; ++key) {
    if (!(keymap->keys[key / 8] >> (key % 8) & 1)) continue;
    const auto code = static_cast<std::uint8_t>(key);
    send(code, false);
    xcb_test_fake_input(display_, XCB_KEY_RELEASE, code, XCB_CURRENT_TIME, XCB_WINDOW_NONE, 0, 0, 0);
  }
  display_.sync();
}

}  // namespace tavelle::bench
