#include "platform/linux/AppleEvents.h"

namespace tavelle {

void LinuxAppleEventManager::setEventHandler(AppleEventHandler handler, std::uint32_t eventClass,
                                             std::uint32_t eventID) {
  handlers_.insert_or_assign(std::pair{eventClass, eventID}, std::move(handler));
}

void LinuxAppleEventManager::getURL(std::string url) {
  const auto handler = handlers_.find({kInternetEventClass, kAEGetURL});
  if (handler == handlers_.end()) return;
  AppleEvent reply;  // nobody asked for one
  handler->second({.parameters = {{keyDirectObject, {.stringValue = std::move(url)}}}}, reply);
}

}  // namespace tavelle
