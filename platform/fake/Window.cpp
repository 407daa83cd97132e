#include "platform/fake/Window.h"

#include <utility>

namespace tavelle {

FakeWindow::FakeWindow(EventLog& log, Rect rect, WindowStyleMask style, BackingStoreType store, bool defer)
    : contentRect(rect), styleMask(style), backing(store), isDeferred(defer), log_(log) {
  log_.add("made a window");
}

FakeWindow::~FakeWindow() {
  letGoOfContent();
}

view::HeadlessRenderer FakeWindow::makeScreen() {
  return view::HeadlessRenderer{[this](const view::Event& event) { content_->dispatch(event); }};
}

void FakeWindow::letGoOfContent() {
  if (content_) content_->attach(nullptr);
}

void FakeWindow::setContentView(std::shared_ptr<view::Content> content) {
  letGoOfContent();
  screen = makeScreen();
  content_ = std::move(content);
  content_->attach(&screen);
}

void FakeWindow::center() {
  log_.add("centred the window");
}

void FakeWindow::makeKeyAndOrderFront() {
  isVisible = true;
  log_.add("ordered the window front");
}

}  // namespace tavelle
