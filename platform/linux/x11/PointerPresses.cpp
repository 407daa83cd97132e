#include "platform/linux/x11/PointerPresses.h"

#include <xcb/xinput.h>

#include <utility>

namespace tavelle::x11 {

PointerPresses::PointerPresses(Connection& connection)
    : state_(std::make_shared<State>(State{connection, {}})),
      events_(connection.events().subscribe([state = state_.get()](const auto& event) { state->received(event); })) {}

Subscription PointerPresses::subscribe(std::function<void()> onPress) {
  if (state_->wanted++ == 0) state_->watch(true);
  const auto token = std::make_shared<Subscription>(state_->presses.subscribe(std::move(onPress)));
  return Subscription{[weak = std::weak_ptr{state_}, token] {
    token->cancel();
    const auto state = weak.lock();
    if (state && --state->wanted == 0) state->watch(false);
  }};
}

// Raw events go past the grab of whoever has the button. Of all devices, and not of all masters as the releases of
// HeldKeys: the server keeps one mask for each of the two.
void PointerPresses::State::watch(bool isOn) const {
  if (!connection.extension(xcb_input_id)) return;
  struct {
    xcb_input_event_mask_t head;
    std::uint32_t mask;
  } raw = {{XCB_INPUT_DEVICE_ALL, 1}, isOn ? std::uint32_t{XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS} : 0};
  xcb_input_xi_select_events(connection, connection.root(), 1, &raw.head);
  connection.flush();
}

void PointerPresses::State::received(const xcb_generic_event_t& event) const {
  if (wanted == 0 || Connection::typeOf(event) != XCB_GE_GENERIC) return;
  const auto& raw = Connection::as<xcb_input_raw_button_press_event_t>(event);
  const auto* const input = connection.extension(xcb_input_id);
  if (input && raw.extension == input->major_opcode && raw.event_type == XCB_INPUT_RAW_BUTTON_PRESS) presses.send();
}

}  // namespace tavelle::x11
