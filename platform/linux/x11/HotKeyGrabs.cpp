#include "platform/linux/x11/HotKeyGrabs.h"

#include <glib.h>

#include <algorithm>
#include <utility>

namespace tavelle::x11 {

class HotKeyGrabs::Grab : public HotKeyGrab {
 public:
  Grab(HotKeyGrabs& owner, xcb_keycode_t grabbedKey, std::uint32_t modifiers)
      : key(grabbedKey),
        carbonModifiers(modifiers),
        mask(owner.keyboard_.modifiers().maskOf(modifiers)),
        owner_(owner) {
    owner_.grabs_.push_back(this);
  }
  ~Grab() override {
    std::erase(owner_.grabs_, this);
    if (isHeld) owner_.leave(place());
  }
  Grab(const Grab&) = delete;
  Grab& operator=(const Grab&) = delete;

  Place place() const { return {key, mask}; }

  const xcb_keycode_t key;
  const std::uint32_t carbonModifiers;
  std::uint16_t mask;
  bool isHeld = false;

 private:
  HotKeyGrabs& owner_;
};

HotKeyGrabs::HotKeyGrabs(Connection& connection, Keyboard& keyboard)
    : connection_(connection),
      keyboard_(keyboard),
      lockCombinations_(keyboard.modifiers().lockCombinations()),
      giveBackSource_(makeSource("hotkeys: give back", [this] { giveBackLeft(); })),
      modifiersChanged_(keyboard.modifiersChanged().subscribe([this] { follow(); })) {
  for (auto screen = xcb_setup_roots_iterator(xcb_get_setup(connection_)); screen.rem > 0; xcb_screen_next(&screen)) {
    roots_.push_back(screen.data->root);
  }
}

HotKeyGrabs::~HotKeyGrabs() {
  giveBackLeft();
}

template <typename Visit>
void HotKeyGrabs::forEachVariant(const Place& place, Visit visit) const {
  for (const auto root : roots_) {
    for (const auto locks : lockCombinations_) visit(root, static_cast<std::uint16_t>(place.mask | locks));
  }
}

std::unique_ptr<HotKeyGrab> HotKeyGrabs::grab(xcb_keycode_t key, std::uint32_t carbonModifiers) {
  const auto mask = keyboard_.modifiers().maskOf(carbonModifiers);
  // The server lets a client grab the same key twice.
  const bool isOurs = std::ranges::any_of(grabs_, [&](auto* grab) { return grab->key == key && grab->mask == mask; });
  if (isOurs) return nullptr;
  auto made = std::make_unique<Grab>(*this, key, carbonModifiers);
  made->isHeld = std::erase(left_, made->place()) > 0 || take(made->place());
  if (!made->isHeld) return nullptr;
  return made;
}

bool HotKeyGrabs::take(const Place& place) const {
  std::vector<xcb_void_cookie_t> cookies;
  forEachVariant(place, [&](auto root, auto modifiers) {
    cookies.push_back(
        xcb_grab_key_checked(connection_, 0, root, modifiers, place.key, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
  });
  bool isTaken = true;
  for (const auto cookie : cookies) {
    const XcbReply<xcb_generic_error_t> error{xcb_request_check(connection_, cookie)};
    if (error) isTaken = false;
  }
  if (!isTaken) giveBack(place);
  return isTaken;
}

void HotKeyGrabs::giveBack(const Place& place) const {
  forEachVariant(place, [&](auto root, auto modifiers) { xcb_ungrab_key(connection_, place.key, root, modifiers); });
  connection_.flush();
}

void HotKeyGrabs::leave(const Place& place) {
  left_.push_back(place);
  g_source_set_ready_time(giveBackSource_.get(), 0);
}

void HotKeyGrabs::giveBackLeft() {
  g_source_set_ready_time(giveBackSource_.get(), -1);
  for (const auto& place : std::exchange(left_, {})) giveBack(place);
}

void HotKeyGrabs::takeUnchecked(const Place& place) const {
  forEachVariant(place, [&](auto root, auto modifiers) {
    xcb_grab_key(connection_, 0, root, modifiers, place.key, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
  });
}

bool HotKeyGrabs::matches(const HotKeyGrab& grab, xcb_keycode_t key, std::uint16_t modifiers) const {
  const auto& own = static_cast<const Grab&>(grab);
  return own.isHeld && own.key == key && own.mask == modifiers;
}

void HotKeyGrabs::without(xcb_keycode_t key, std::uint16_t modifiers, const std::function<void()>& work) {
  giveBackLeft();
  std::vector<Grab*> inTheWay;
  for (auto* const grab : grabs_) {
    if (matches(*grab, key, modifiers)) inTheWay.push_back(grab);
  }
  for (auto* const grab : inTheWay) {
    forEachVariant(grab->place(), [&](auto root, auto mask) { xcb_ungrab_key(connection_, grab->key, root, mask); });
  }
  work();
  for (auto* const grab : inTheWay) takeUnchecked(grab->place());
}

void HotKeyGrabs::follow() {
  giveBackLeft();
  const auto& modifiers = keyboard_.modifiers();
  const bool haveLocksMoved = modifiers.lockCombinations() != lockCombinations_;
  std::vector<Grab*> moved;
  for (auto* const grab : grabs_) {
    const bool hasMoved = haveLocksMoved || modifiers.maskOf(grab->carbonModifiers) != grab->mask;
    if (hasMoved || !grab->isHeld) moved.push_back(grab);
  }
  // All go before any comes back: one grab's new place may be another's old one.
  for (auto* const grab : moved) giveBack(grab->place());
  lockCombinations_ = modifiers.lockCombinations();
  for (auto* const grab : moved) {
    grab->mask = modifiers.maskOf(grab->carbonModifiers);
    grab->isHeld = take(grab->place());
    if (!grab->isHeld) {
      g_warning("After a change of the keyboard layout another program holds a hotkey's combination (keycode %u).",
                static_cast<unsigned>(grab->key));
    }
  }
}

}  // namespace tavelle::x11
