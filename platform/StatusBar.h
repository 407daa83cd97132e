#pragma once

#include "platform/Bundle.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace tavelle {

// One entry of a menu. An entry with an empty title is a separator; one without an action is shown disabled.
struct MenuItem {
  std::string title;
  std::function<void()> action;  // called on the main thread
  std::string keyEquivalent;     // one character, pressed with Command; empty for none

  static MenuItem separator() { return {}; }
  bool isSeparator() const { return title.empty(); }
};

using Menu = std::vector<MenuItem>;

// NSSquareStatusItemLength: as wide as the bar is thick.
inline constexpr double squareStatusItemLength = -2;

// An item of the menu bar (NSStatusItem; StatusNotifierItem on Linux). It leaves the bar when destroyed. Main thread
// only.
class StatusItem {
 public:
  virtual ~StatusItem() = default;

  // False where the system gives the item no button, so that there is nothing to put an image on.
  virtual bool hasButton() const = 0;
  virtual void setButtonImage(std::shared_ptr<Image> image) = 0;
  virtual void setMenu(Menu menu) = 0;
};

// The system's status bar (NSStatusBar). Linux: whichever panel watches for items, now or later.
class StatusBar {
 public:
  virtual ~StatusBar() = default;

  virtual std::unique_ptr<StatusItem> statusItemWithLength(double length) = 0;
};

}  // namespace tavelle
