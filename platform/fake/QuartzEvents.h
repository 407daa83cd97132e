#pragma once

#include "platform/QuartzEvents.h"
#include "platform/fake/EventLog.h"

#include <functional>
#include <optional>
#include <vector>

namespace tavelle {

// Records each key event as it was posted. A key that goes down and up is answered by what the test says an application
// does.
class FakeQuartzEvents : public QuartzEvents {
 public:
  struct Posted {
    EventTapLocation tap;
    std::optional<EventSourceStateID> source;  // none where the event was made without a source
    std::uint16_t keyCode;
    bool keyDown;
    std::uint64_t flags;

    bool operator==(const Posted&) const = default;
  };

  explicit FakeQuartzEvents(EventLog& log) : log_(log) {}

  std::unique_ptr<EventSource> createEventSource(EventSourceStateID state) override;
  std::unique_ptr<KeyboardEvent> createKeyboardEvent(EventSource* source, std::uint16_t keyCode, bool keyDown) override;
  void setFlags(KeyboardEvent& event, std::uint64_t flags) override;
  void post(EventTapLocation tap, const KeyboardEvent& event) override;

  std::vector<Posted> posted;
  bool refusesEvents = false;

  // The application with the keyboard: called when Command+C and Command+V come up.
  std::function<void()> onCopy = [] {};
  std::function<void()> onPaste = [] {};
  std::function<void(std::uint16_t keyCode)> onOtherKey = [](std::uint16_t) {};

 private:
  void stroke(std::uint16_t keyCode, std::uint64_t flags);

  EventLog& log_;
  std::optional<std::uint16_t> down_;
};

}  // namespace tavelle
