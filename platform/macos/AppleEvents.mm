#include "platform/macos/AppleEvents.h"

#include "platform/macos/Strings.h"

@interface TavelleAppleEventHandler : NSObject
- (instancetype)initWithHandler:(tavelle::AppleEventHandler)handler;
- (void)handleEvent:(NSAppleEventDescriptor*)event withReplyEvent:(NSAppleEventDescriptor*)reply;
@end

@implementation TavelleAppleEventHandler {
  tavelle::AppleEventHandler _handler;
}

- (instancetype)initWithHandler:(tavelle::AppleEventHandler)handler {
  self = [super init];
  if (self) _handler = std::move(handler);
  return self;
}

- (void)handleEvent:(NSAppleEventDescriptor*)event withReplyEvent:(NSAppleEventDescriptor*)__unused reply {
  tavelle::AppleEvent received;
  if (NSAppleEventDescriptor* const object = [event paramDescriptorForKeyword:tavelle::keyDirectObject]) {
    NSString* const text = object.stringValue;
    received.parameters[tavelle::keyDirectObject] = {text ? std::optional{tavelle::utf8(text)} : std::nullopt};
  }
  tavelle::AppleEvent unused;
  _handler(received, unused);
}

@end

namespace tavelle {

void MacAppleEventManager::setEventHandler(AppleEventHandler handler, std::uint32_t eventClass, std::uint32_t eventID) {
  id const target = [[TavelleAppleEventHandler alloc] initWithHandler:std::move(handler)];
  [NSAppleEventManager.sharedAppleEventManager setEventHandler:target
                                                   andSelector:@selector(handleEvent:withReplyEvent:)
                                                 forEventClass:eventClass
                                                    andEventID:eventID];
  handlers_[{eventClass, eventID}] = target;
}

}  // namespace tavelle
