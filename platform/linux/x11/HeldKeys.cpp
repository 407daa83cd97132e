#include "platform/linux/x11/HeldKeys.h"

#include <xcb/xtest.h>

#include <algorithm>

namespace tavelle::x11 {
namespace {

constexpr gint64 immediately = 0;
constexpr gint64 never = -1;

// Time stamps are whole milliseconds, of a clock that may itself be one behind. Whoever waits this long after a release
// was heard of finds the next press more than the longest gap after it.
constexpr gint64 gapIsOver = 1000 * gint64{HeldKeys::longestGap + 2};

gint64 microseconds(std::chrono::milliseconds duration) {
  return std::chrono::microseconds{duration}.count();
}

}  // namespace

HeldKeys::HeldKeys(Connection& connection, Keyboard& keyboard, HotKeyGrabs& grabs)
    : HeldKeys(connection, keyboard, grabs, Limits{}) {}

HeldKeys::HeldKeys(Connection& connection, Keyboard& keyboard, HotKeyGrabs& grabs, Limits limits)
    : connection_(connection),
      keyboard_(keyboard),
      grabs_(grabs),
      limits_(limits),
      grabWindow_(xcb_generate_id(connection)),
      checkSource_(makeSource("X11 held keys", [this] { check(); })),
      limitSource_(makeSource("X11 held keys: limit", [this] { limitReached(); })),
      nextTurnSource_(makeSource("X11 held keys: next turn", [this] { endTurn(); })),
      events_(connection.events().subscribe([this](const auto& event) { received(event); })) {
  // Below the connection's source, so that a check concludes only when no event is waiting.
  g_source_set_priority(checkSource_.get(), G_PRIORITY_DEFAULT_IDLE);
  if (const auto* const input = connection_.extension(xcb_input_id)) inputOpcode_ = input->major_opcode;
  // A window of no size to anyone, only because the server tells a client that grabs the keyboard for the root no raw
  // events, and grabs it for none that is not mapped.
  const std::uint32_t isUnmanaged = 1;
  xcb_create_window(connection_, 0, grabWindow_, connection_.root(), -1, -1, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                    XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT, &isUnmanaged);
  xcb_map_window(connection_, grabWindow_);
}

HeldKeys::~HeldKeys() {
  if (isGuarding_) endGuard();
  xcb_destroy_window(connection_, grabWindow_);
}

std::uint16_t HeldKeys::modifiersOf(const xcb_key_press_event_t& press) const {
  const auto& modifiers = keyboard_.modifiers();
  const unsigned int mask = press.state | modifiers.maskOfKeys(lifted_);
  return static_cast<std::uint16_t>(mask & 0xFFu & ~unsigned{modifiers.locks()});
}

void HeldKeys::becameHotKey(xcb_keycode_t key) {
  if (pressed_[key] || !keysDownThisTurn()[key]) return;
  early_.set(key);
  watchReleases();
  if (!keyboard_.devices().keysDown()[key]) {  // it went up before anybody watched
    early_.reset(key);
    return watchReleases();
  }
  const auto now = connection_.serverTime();
  hotKey_ = {key, now, now, 0};
}

const KeySet& HeldKeys::keysDownThisTurn() {
  if (!keysDownThisTurn_) {
    keysDownThisTurn_ = keyboard_.devices().keysDown();
    g_source_set_ready_time(nextTurnSource_.get(), immediately);
  }
  return *keysDownThisTurn_;
}

void HeldKeys::endTurn() {
  g_source_set_ready_time(nextTurnSource_.get(), never);
  keysDownThisTurn_.reset();
}

bool HeldKeys::press(const xcb_key_press_event_t& press) {
  if (pressed_[press.detail]) return false;
  pressed_.set(press.detail);
  if (!isGuarding_) {
    guard();
    kept_.set(press.detail);
    grabKeyboard();
    connection_.flush();
    checkSoon();
  }
  if (early_[press.detail]) return false;
  if (press.detail == hotKey_.key && mayRepeat() && press.time - hotKey_.released <= longestGap) return false;
  hotKey_ = {press.detail, press.time, press.time, 0};
  return true;
}

void HeldKeys::send(const KeyStroke& stroke, const KeySet& down) {
  KeySet lift = down & keyboard_.modifiers().keys();
  if (down[stroke.key]) lift.set(stroke.key);
  if (lift.any() && !isGuarding_) guard();
  lifted_ |= lift;
  grabs_.without(stroke.key, stroke.modifiers, [&] {
    if (isGuarding_) xcb_ungrab_keyboard(connection_, XCB_CURRENT_TIME);
    type(stroke, lift);
    if (isGuarding_) grabKeyboard();
  });
  connection_.flush();
  if (isGuarding_) checkSoon();
}

void HeldKeys::type(const KeyStroke& stroke, const KeySet& lift) {
  // Alt or Super going up with nothing pressed since it went down opens a menu in many applications: they go up when
  // the stroke's own modifiers are down already. All others go first, so that no modifier joins them for a moment and
  // makes the combination that switches the layout.
  const auto menuKeys = keyboard_.modifiers().menuKeys();
  const auto letGo = [&](const KeySet& keys) {
    for (std::size_t key = 0; key < keys.size(); ++key) {
      if (keys[key]) fake(XCB_KEY_RELEASE, static_cast<xcb_keycode_t>(key));
    }
  };
  firstFake_ = lastFake_ = 0;
  letGo(lift & ~menuKeys);
  for (const auto key : stroke.modifierKeys) fake(XCB_KEY_PRESS, key);
  letGo(lift & menuKeys);
  fake(XCB_KEY_PRESS, stroke.key);
  fake(XCB_KEY_RELEASE, stroke.key);
  for (auto key = stroke.modifierKeys.rbegin(); key != stroke.modifierKeys.rend(); ++key) fake(XCB_KEY_RELEASE, *key);
}

void HeldKeys::fake(std::uint8_t type, xcb_keycode_t key) {
  lastFake_ = xcb_test_fake_input(connection_, type, key, XCB_CURRENT_TIME, XCB_WINDOW_NONE, 0, 0, 0).sequence;
  if (firstFake_ == 0) firstFake_ = lastFake_;
}

void HeldKeys::guard() {
  isGuarding_ = true;
  guardedSince_ = heardLast_ = g_get_monotonic_time();
  g_source_set_ready_time(limitSource_.get(), limit());
  watchReleases();
}

void HeldKeys::endGuard() {
  isGuarding_ = false;
  pressed_.reset();
  kept_.reset();
  lifted_.reset();
  checkedAt_.reset();
  g_source_set_ready_time(limitSource_.get(), never);
  g_source_set_ready_time(checkSource_.get(), never);
  if (grabCookie_) xcb_discard_reply(connection_, grabCookie_->sequence);
  grabCookie_.reset();
  watchReleases();
  xcb_ungrab_keyboard(connection_, XCB_CURRENT_TIME);
  connection_.flush();
}

void HeldKeys::grabKeyboard() {
  if (grabCookie_) xcb_discard_reply(connection_, grabCookie_->sequence);
  grabCookie_ =
      xcb_grab_keyboard(connection_, 0, grabWindow_, XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
}

// Raw events come from the keyboards themselves: the release of a key that applications believe to be up already is
// told by nothing else.
void HeldKeys::watchReleases() const {
  const bool isOn = isGuarding_ || early_.any();
  struct {
    xcb_input_event_mask_t head;
    std::uint32_t mask;
  } raw = {{XCB_INPUT_DEVICE_ALL_MASTER, 1}, isOn ? std::uint32_t{XCB_INPUT_XI_EVENT_MASK_RAW_KEY_RELEASE} : 0};
  xcb_input_xi_select_events(connection_, connection_.root(), 1, &raw.head);
}

void HeldKeys::received(const xcb_generic_event_t& event) {
  if (!isGuarding_ && early_.none()) return;
  const auto type = Connection::typeOf(event);
  if (type == XCB_KEY_PRESS) {
    // Someone who types on is not kept waiting for a moment with all keys up.
    if (pressed_.any()) kept_.set(Connection::as<xcb_key_press_event_t>(event).detail);
    heardLast_ = g_get_monotonic_time();
    ++eventCount_;
  } else if (type == XCB_KEY_RELEASE) {
    const auto& release = Connection::as<xcb_key_release_event_t>(event);
    released(release.detail, release.time);
  } else if (type == XCB_GE_GENERIC) {
    const auto& raw = Connection::as<xcb_input_raw_key_release_event_t>(event);
    const bool isRelease = raw.extension == inputOpcode_ && raw.event_type == XCB_INPUT_RAW_KEY_RELEASE;
    if (isRelease && raw.detail < kept_.size() && !isOwn(raw)) {
      released(static_cast<xcb_keycode_t>(raw.detail), raw.time);
    }
  }
}

// The server names in each event the last request that it had carried out: a synthetic key's event that names one of
// the stroke's own requests is that request's doing. Core events need no such care, since the stroke's go to the
// application.
bool HeldKeys::isOwn(const xcb_input_raw_key_press_event_t& event) const {
  const bool isSynthetic = event.sourceid == keyboard_.devices().syntheticKeyboard();
  return isSynthetic && event.full_sequence - firstFake_ <= lastFake_ - firstFake_;
}

void HeldKeys::released(xcb_keycode_t key, xcb_timestamp_t time) {
  pressed_.reset(key);
  lifted_.reset(key);
  early_.reset(key);
  heardLast_ = g_get_monotonic_time();
  if (key == hotKey_.key) {
    hotKey_.released = time;
    hotKey_.heard = heardLast_;
  }
  if (!isGuarding_) return watchReleases();
  ++eventCount_;
  checkSoon();
}

bool HeldKeys::mayRepeat() const {
  return hotKey_.released - hotKey_.pressed >= shortestDelay;
}

void HeldKeys::checkSoon() {
  checkedAt_.reset();
  g_source_set_ready_time(checkSource_.get(), immediately);
}

// In two turns of the loop: the state of the devices may be newer than the events that were dealt with so far, and
// those that are still to come may well be presses.
void HeldKeys::check() {
  if (checkedAt_) {
    if (*checkedAt_ == eventCount_) return endGuard();
    return checkSoon();
  }
  // A key that went down together with the hotkey's would start to repeat into the application.
  const auto awaited = kept_ | lifted_ | keyboard_.modifiers().keys();
  const bool isHeld = (keyboard_.devices().keysDown() & awaited).any();
  if (grabCookie_) {
    const XcbReply<xcb_grab_keyboard_reply_t> grab{xcb_grab_keyboard_reply(connection_, *grabCookie_, nullptr)};
    grabCookie_.reset();
    // Another program has the keyboard, a menu perhaps: it gets the keys, and nothing is left to guard.
    if (!grab || grab->status != XCB_GRAB_STATUS_SUCCESS) return endGuard();
  }
  if (isHeld) return g_source_set_ready_time(checkSource_.get(), never);
  checkedAt_ = eventCount_;
  g_source_set_ready_time(checkSource_.get(), mayRepeat() ? hotKey_.heard + gapIsOver : immediately);
}

gint64 HeldKeys::limit() const {
  return std::min(heardLast_ + microseconds(limits_.silence), guardedSince_ + microseconds(limits_.whole));
}

void HeldKeys::limitReached() {
  if (g_get_monotonic_time() >= limit()) return endGuard();
  g_source_set_ready_time(limitSource_.get(), limit());
}

}  // namespace tavelle::x11
