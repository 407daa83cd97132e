#pragma once

#include "platform/AppleEvents.h"

#include <map>
#include <string>
#include <utility>

namespace tavelle {

// The events of a desktop: links of the application's scheme, which LinuxApplication receives.
class LinuxAppleEventManager : public AppleEventManager {
 public:
  void setEventHandler(AppleEventHandler handler, std::uint32_t eventClass, std::uint32_t eventID) override;

  // Passes a link on to the handler for links.
  void getURL(std::string url);

 private:
  std::map<std::pair<std::uint32_t, std::uint32_t>, AppleEventHandler> handlers_;  // by event class and event ID
};

}  // namespace tavelle
