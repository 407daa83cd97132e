#pragma once

#include "view/Event.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace tavelle::view {

// NSEventMaskKeyDown.
inline constexpr std::uint64_t eventMaskKeyDown = 1 << 10;

// The key events of an application before any of its widgets sees them (NSEvent's local monitors; on other systems the
// renderer's own). Main thread only.
class EventMonitors {
 public:
  using Token = std::uint64_t;
  // Returns the event to pass it on, or nothing to swallow it.
  using Block = std::function<std::optional<KeyDown>(const KeyDown&)>;

  virtual ~EventMonitors() = default;

  virtual Token addLocalMonitorForEventsMatchingMask(std::uint64_t mask, Block block) = 0;
  virtual void removeMonitor(Token token) = 0;
};

// Delivers every key down of the application to `handler` while `isEnabled`, and keeps it from everything else. It
// neither reads nor filters them. Each renderer makes one for each key-capture node. Held by shared_ptr; a monitor that
// outlives its view passes everything on.
class KeyCaptureView : public std::enable_shared_from_this<KeyCaptureView> {
 public:
  bool isEnabled = false;
  std::function<void(const KeyDown&)> handler;
  std::optional<EventMonitors::Token> monitor;

  // Every move into a window installs one more monitor; the token kept is the last one's.
  void viewDidMoveToWindow(EventMonitors& monitors);
  void removeFromSuperview(EventMonitors& monitors) const;

 private:
  std::optional<KeyDown> capture(const KeyDown& event) const;
};

}  // namespace tavelle::view
