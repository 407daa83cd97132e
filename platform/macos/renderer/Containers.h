#pragma once

#include "platform/macos/renderer/Widget.h"

namespace tavelle::appkit {

std::unique_ptr<Widget> makeForm();
std::unique_ptr<Widget> makeSection();
std::unique_ptr<Widget> makeStackWidget();
std::unique_ptr<Widget> makeRow();
std::unique_ptr<Widget> makeLabeledContent();
std::unique_ptr<Widget> makeSpacer();

// A plain view that its one child fills.
class Wrapper : public Widget {
 public:
  NSView* view() const override { return view_; }
  void update() override {}
  void arrange() override;

 private:
  NSView* view_ = [[NSView alloc] initWithFrame:NSZeroRect];
};

}  // namespace tavelle::appkit
