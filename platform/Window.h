#pragma once

#include "view/Renderer.h"

#include <cstdint>
#include <memory>
#include <string>

namespace tavelle {

// In points, from the lower left corner of the screen.
struct Rect {
  double x;
  double y;
  double width;
  double height;

  bool operator==(const Rect&) const = default;
};

// NSWindowStyleMask.
enum class WindowStyleMask : std::uint32_t { titled = 1U << 0, closable = 1U << 1 };

constexpr WindowStyleMask operator|(WindowStyleMask one, WindowStyleMask other) {
  return static_cast<WindowStyleMask>(static_cast<std::uint32_t>(one) | static_cast<std::uint32_t>(other));
}

enum class BackingStoreType : std::uint32_t { buffered = 2 };  // NSBackingStoreBuffered

// A window (NSWindow), hidden until it is ordered front. It is gone when destroyed. Main thread only.
//
// It draws its content by attaching a renderer to it (NSHostingView), whenever and for as long as it needs one; the
// content keeps all state. Linux: the renderer is a process of its own, and what goes between the two are the values of
// view/HostOperation.h and view/Event.h.
class Window {
 public:
  virtual ~Window() = default;

  virtual void setTitle(std::string title) = 0;
  virtual void setContentView(std::shared_ptr<view::Content> content) = 0;

  // False: closing only hides it.
  virtual void setReleasedWhenClosed(bool isReleased) = 0;

  virtual void center() = 0;

  // Shows it where it stood, above the others and with the keyboard.
  virtual void makeKeyAndOrderFront() = 0;
};

}  // namespace tavelle
