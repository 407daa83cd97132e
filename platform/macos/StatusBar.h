#pragma once

#include "platform/StatusBar.h"

namespace tavelle {

// NSStatusBar.systemStatusBar.
class MacStatusBar : public StatusBar {
 public:
  std::unique_ptr<StatusItem> statusItemWithLength(double length) override;
};

}  // namespace tavelle
