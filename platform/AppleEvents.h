#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>

namespace tavelle {

// Codes of four characters, the first in the most significant byte (AERegistry.h, InternetConfig.h).
inline constexpr std::uint32_t kInternetEventClass = 0x4755524C;  // 'GURL'
inline constexpr std::uint32_t kAEGetURL = 0x4755524C;            // 'GURL'
inline constexpr std::uint32_t keyDirectObject = 0x2D2D2D2D;      // '----'

// What an event carries under one keyword (NSAppleEventDescriptor). It need not be a text.
struct AppleEventDescriptor {
  std::optional<std::string> stringValue;
};

// An event that another program sent, and the reply to one (NSAppleEventDescriptor).
struct AppleEvent {
  std::map<std::uint32_t, AppleEventDescriptor> parameters;

  // Null where there is none.
  const AppleEventDescriptor* paramDescriptorForKeyword(std::uint32_t keyword) const {
    const auto found = parameters.find(keyword);
    return found == parameters.end() ? nullptr : &found->second;
  }
};

using AppleEventHandler = std::function<void(const AppleEvent& event, AppleEvent& reply)>;

// The application's events from outside (NSAppleEventManager). Main thread only; handlers are called there too.
//
// Linux: a link of the application's scheme, given on the command line or opened over the session bus, is the event
// kInternetEventClass, kAEGetURL with the link as its direct object. One that started the program comes once launching
// is done.
class AppleEventManager {
 public:
  virtual ~AppleEventManager() = default;

  // setEventHandler:andSelector:forEventClass:andEventID:. The handler takes the place of an earlier one for the same
  // event.
  virtual void setEventHandler(AppleEventHandler handler, std::uint32_t eventClass, std::uint32_t eventID) = 0;
};

}  // namespace tavelle
