#include "hotkeys/HotkeyManager.h"

#include "hotkeys/FourCharCode.h"
#include "hotkeys/HotkeyNumber.h"
#include "platform/Platform.h"
#include "platform/Shared.h"

#include <array>
#include <iostream>
#include <utility>

namespace tavelle {
namespace {

// Called by the system's event dispatch. It only schedules: the look-up and the callback then come in turn with
// registrations.
OSStatus hotkeyEventHandler(EventHandlerCallRef, EventRef event, void*) {
  if (!event) return eventNotHandledErr;
  EventHotKeyID hotkey{};
  const OSStatus status = Platform::current().carbonEvents().getEventParameter(
      event, kEventParamDirectObject, typeEventHotKeyID, sizeof hotkey, &hotkey);
  if (status != noErr) return status;
  Platform::current().mainActor().post([id = hotkey.id] { HotkeyManager::shared().handleHotkeyEvent(id); });
  return noErr;
}

}  // namespace

HotkeyManager& HotkeyManager::shared() {
  return sharedInstance<HotkeyManager>();
}

std::unique_ptr<HotkeyManager> HotkeyManager::makeShared() {
  return std::make_unique<HotkeyManager>(Platform::current().carbonEvents());
}

void HotkeyManager::registerAll(const std::vector<RewriteProfile>& profiles) {
  unregisterAll();
  installHandlerIfNeeded();
  for (const auto& profile : profiles) {
    if (profile.keyCode != 0) registerProfile(profile);
  }
}

void HotkeyManager::registerProfile(const RewriteProfile& profile) {
  const std::uint32_t id = takeHotkeyNumber(nextHotkeyID_);
  EventHotKeyRef ref = nullptr;
  const OSStatus status =
      events_.registerEventHotKey(profile.keyCode, profile.modifiers, {.signature = fourCharCode("TVLE"), .id = id},
                                  events_.getApplicationEventTarget(), 0, &ref);
  if (status == noErr && ref) {
    registeredHotkeys_.emplace(id, Registration{ref, profile.id});
  } else {
    std::cout << "Failed to register hotkey for profile '" << profile.name << "': " << status << std::endl;
  }
}

void HotkeyManager::unregisterAll() {
  for (const auto& [id, registration] : registeredHotkeys_) events_.unregisterEventHotKey(registration.ref);
  registeredHotkeys_.clear();
  nextHotkeyID_ = 1;
}

void HotkeyManager::installHandlerIfNeeded() {
  if (eventHandlerRef_) return;
  constexpr std::array types{EventTypeSpec{kEventClassKeyboard, kEventHotKeyPressed}};
  const OSStatus status = events_.installEventHandler(events_.getApplicationEventTarget(), hotkeyEventHandler, types,
                                                      nullptr, &eventHandlerRef_);
  if (status != noErr) std::cout << "Failed to install event handler: " << status << std::endl;
}

void HotkeyManager::handleHotkeyEvent(std::uint32_t carbonID) {
  const auto registration = registeredHotkeys_.find(carbonID);
  if (registration == registeredHotkeys_.end() || !onProfileHotkeyPressed) return;
  onProfileHotkeyPressed(registration->second.profileID);
}

}  // namespace tavelle
