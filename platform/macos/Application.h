#pragma once

#import <AppKit/AppKit.h>

#include "platform/Application.h"

namespace tavelle {

// NSApplication. That it has no icon in the Dock is settled by the bundle (LSUIElement), which also lets the system
// start it once only.
class MacApplication : public Application {
 public:
  void setDelegate(std::weak_ptr<ApplicationDelegate> delegate) override;

  // Returns only where the event loop was stopped without terminate(), which ends the process itself.
  int run(std::span<char*> arguments) override;

  void activateIgnoringOtherApps(bool flag) override;
  void terminate() override;

 private:
  id<NSApplicationDelegate> delegate_;  // the application holds it weakly
};

}  // namespace tavelle
