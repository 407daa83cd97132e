#pragma once

#include "platform/AppleEvents.h"

#include <map>
#include <string>
#include <utility>

namespace tavelle {

// Events that the test sends, as the system would.
class FakeAppleEventManager : public AppleEventManager {
 public:
  void setEventHandler(AppleEventHandler handler, std::uint32_t eventClass, std::uint32_t eventID) override {
    handlers.insert_or_assign(std::pair{eventClass, eventID}, std::move(handler));
  }

  // The person opens a link.
  void getURL(const std::string& url) { send({.parameters = {{keyDirectObject, {.stringValue = url}}}}); }

  void send(const AppleEvent& event) {
    AppleEvent reply;
    const auto handler = handlers.find({kInternetEventClass, kAEGetURL});
    if (handler != handlers.end()) handler->second(event, reply);
  }

  // By event class and event ID.
  std::map<std::pair<std::uint32_t, std::uint32_t>, AppleEventHandler> handlers;
};

}  // namespace tavelle
