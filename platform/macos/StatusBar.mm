#include "platform/macos/StatusBar.h"

#import <AppKit/AppKit.h>

#include "platform/macos/Bundle.h"
#include "platform/macos/Strings.h"

#include <utility>

// The target of a menu entry, which the entry keeps alive.
@interface TavelleMenuAction : NSObject
- (instancetype)initWithAction:(std::function<void()>)action;
- (void)perform:(id)sender;
@end

@implementation TavelleMenuAction {
  std::function<void()> _action;
}

- (instancetype)initWithAction:(std::function<void()>)action {
  self = [super init];
  if (self) _action = std::move(action);
  return self;
}

- (void)perform:(id)__unused sender {
  _action();
}

@end

namespace tavelle {
namespace {

NSMenuItem* menuItem(MenuItem entry) {
  if (entry.isSeparator()) return NSMenuItem.separatorItem;
  NSMenuItem* const item = [[NSMenuItem alloc] initWithTitle:nsString(entry.title)
                                                      action:entry.action ? @selector(perform:) : nil
                                               keyEquivalent:nsString(entry.keyEquivalent)];
  if (entry.action) {
    TavelleMenuAction* const action = [[TavelleMenuAction alloc] initWithAction:std::move(entry.action)];
    item.target = action;
    item.representedObject = action;  // the target alone is held weakly
  }
  return item;
}

class MacStatusItem : public StatusItem {
 public:
  explicit MacStatusItem(NSStatusItem* item) : item_(item) {}
  ~MacStatusItem() override { [NSStatusBar.systemStatusBar removeStatusItem:item_]; }

  bool hasButton() const override { return item_.button != nil; }

  void setButtonImage(std::shared_ptr<Image> image) override {
    item_.button.image = static_cast<MacImage&>(*image).image();
  }

  void setMenu(Menu entries) override {
    NSMenu* const menu = [[NSMenu alloc] initWithTitle:@""];
    for (auto& entry : entries) [menu addItem:menuItem(std::move(entry))];
    item_.menu = menu;
  }

 private:
  NSStatusItem* item_;
};

}  // namespace

std::unique_ptr<StatusItem> MacStatusBar::statusItemWithLength(double length) {
  const CGFloat systemLength = length == squareStatusItemLength ? NSSquareStatusItemLength : length;
  return std::make_unique<MacStatusItem>([NSStatusBar.systemStatusBar statusItemWithLength:systemLength]);
}

}  // namespace tavelle
