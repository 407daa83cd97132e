#pragma once

#import <AppKit/AppKit.h>

#include "platform/Window.h"
#include "platform/macos/renderer/AppKitRenderer.h"

#include <optional>

namespace tavelle {

// NSWindow, and a renderer that draws in it for as long as it lives.
class MacWindow : public Window {
 public:
  MacWindow(Rect contentRect, WindowStyleMask styleMask, BackingStoreType backing, bool defer);
  ~MacWindow() override;

  void setTitle(std::string title) override;
  void setContentView(std::shared_ptr<view::Content> content) override;
  void setReleasedWhenClosed(bool isReleased) override;
  void center() override;
  void makeKeyAndOrderFront() override;

 private:
  NSWindow* window_;
  std::shared_ptr<view::Content> content_;
  std::optional<appkit::AppKitRenderer> renderer_;
};

}  // namespace tavelle
