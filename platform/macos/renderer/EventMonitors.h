#pragma once

#import <AppKit/AppKit.h>

#include "view/KeyCaptureView.h"

#include <map>

namespace tavelle::appkit {

// NSEvent's local monitors.
class MacEventMonitors : public view::EventMonitors {
 public:
  Token addLocalMonitorForEventsMatchingMask(std::uint64_t mask, Block block) override;
  void removeMonitor(Token token) override;

 private:
  std::map<Token, id> monitors_;
  Token last_ = 0;
};

}  // namespace tavelle::appkit
