#pragma once

#include "platform/Window.h"
#include "platform/fake/EventLog.h"
#include "view/headless/HeadlessRenderer.h"

#include <memory>
#include <string>
#include <utility>

namespace tavelle {

// A window in memory. The person closes and moves it, and does in it what a headless renderer can.
class FakeWindow : public Window {
 public:
  FakeWindow(EventLog& log, Rect contentRect, WindowStyleMask styleMask, BackingStoreType backing, bool defer);
  ~FakeWindow() override;

  void setTitle(std::string value) override { title = std::move(value); }
  void setContentView(std::shared_ptr<view::Content> content) override;
  void setReleasedWhenClosed(bool isReleased) override { isReleasedWhenClosed = isReleased; }
  void center() override;
  void makeKeyAndOrderFront() override;

  void close() { isVisible = false; }

  Rect contentRect;
  WindowStyleMask styleMask;
  BackingStoreType backing;
  bool isDeferred;
  std::string title;
  bool isReleasedWhenClosed = true;
  bool isVisible = false;
  view::HeadlessRenderer screen{makeScreen()};

 private:
  view::HeadlessRenderer makeScreen();
  void letGoOfContent();

  EventLog& log_;
  std::shared_ptr<view::Content> content_;
};

}  // namespace tavelle
