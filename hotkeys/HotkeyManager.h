#pragma once

#include "platform/CarbonEvents.h"
#include "platform/UUID.h"
#include "settings/RewriteProfile.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <vector>

namespace tavelle {

// One system-wide hotkey per profile; a press is reported as the profile's identifier. Main thread only. What cannot be
// registered is told on standard output, and that profile has no hotkey until the next registration.
class HotkeyManager {
 public:
  struct Registration {
    EventHotKeyRef ref;
    UUID profileID;
  };

  static HotkeyManager& shared();
  static std::unique_ptr<HotkeyManager> makeShared();

  explicit HotkeyManager(CarbonEvents& events) : events_(events) {}

  // Called on the main thread, on a turn of its own, when a registered hotkey is pressed.
  std::function<void(UUID profileID)> onProfileHotkeyPressed;

  // Replaces every registration by one for each profile that has a key code, numbered from 1 in the list's order.
  void registerAll(const std::vector<RewriteProfile>& profiles);

  void unregisterAll();

  // A press of hotkey number `carbonID`. One that is registered no more, as after a change of the profiles, is
  // nobody's.
  void handleHotkeyEvent(std::uint32_t carbonID);

  // By number.
  const std::map<std::uint32_t, Registration>& registeredHotkeys() const { return registeredHotkeys_; }

 private:
  void registerProfile(const RewriteProfile& profile);
  void installHandlerIfNeeded();

  CarbonEvents& events_;
  std::map<std::uint32_t, Registration> registeredHotkeys_;
  EventHandlerRef eventHandlerRef_ = nullptr;
  std::uint32_t nextHotkeyID_ = 1;
};

}  // namespace tavelle
