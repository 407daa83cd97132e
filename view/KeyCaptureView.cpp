#include "view/KeyCaptureView.h"

namespace tavelle::view {

void KeyCaptureView::viewDidMoveToWindow(EventMonitors& monitors) {
  monitor = monitors.addLocalMonitorForEventsMatchingMask(
      eventMaskKeyDown, [weak = weak_from_this()](const KeyDown& event) -> std::optional<KeyDown> {
        const auto self = weak.lock();
        return self ? self->capture(event) : event;
      });
}

void KeyCaptureView::removeFromSuperview(EventMonitors& monitors) const {
  if (monitor) monitors.removeMonitor(*monitor);
}

std::optional<KeyDown> KeyCaptureView::capture(const KeyDown& event) const {
  if (!isEnabled) return event;
  // A copy: what it does may bring an update of the view, which assigns over the handler while it runs.
  if (const auto current = handler) current(event);
  return std::nullopt;
}

}  // namespace tavelle::view
