#pragma once

#import <Foundation/Foundation.h>

#include "platform/AppleEvents.h"

#include <map>
#include <utility>

namespace tavelle {

// NSAppleEventManager. Of an event the direct object is handed over; a reply is left as it came.
class MacAppleEventManager : public AppleEventManager {
 public:
  void setEventHandler(AppleEventHandler handler, std::uint32_t eventClass, std::uint32_t eventID) override;

 private:
  std::map<std::pair<std::uint32_t, std::uint32_t>, id> handlers_;  // the manager does not own them
};

}  // namespace tavelle
