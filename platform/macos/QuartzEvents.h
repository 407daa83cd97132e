#pragma once

#include "platform/QuartzEvents.h"

namespace tavelle {

class MacQuartzEvents : public QuartzEvents {
 public:
  std::unique_ptr<EventSource> createEventSource(EventSourceStateID state) override;
  std::unique_ptr<KeyboardEvent> createKeyboardEvent(EventSource* source, std::uint16_t keyCode, bool keyDown) override;
  void setFlags(KeyboardEvent& event, std::uint64_t flags) override;
  void post(EventTapLocation tap, const KeyboardEvent& event) override;
};

}  // namespace tavelle
