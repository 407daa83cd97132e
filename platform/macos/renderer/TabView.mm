#include "platform/macos/renderer/TabView.h"

#include "platform/macos/Strings.h"

#include <utility>

// A toolbar that has one item for each tab.
@interface TavelleTabs : NSObject <NSToolbarDelegate> {
 @public
  NSArray<NSToolbarItemIdentifier>* tags;
  std::function<NSToolbarItem*(NSToolbarItemIdentifier tag)> makeItem;
  std::function<void(NSToolbarItemIdentifier tag)> chosen;
}
@end

@implementation TavelleTabs

- (NSArray<NSToolbarItemIdentifier>*)toolbarDefaultItemIdentifiers:(NSToolbar*)__unused toolbar {
  return tags;
}

- (NSArray<NSToolbarItemIdentifier>*)toolbarAllowedItemIdentifiers:(NSToolbar*)__unused toolbar {
  return tags;
}

- (NSArray<NSToolbarItemIdentifier>*)toolbarSelectableItemIdentifiers:(NSToolbar*)__unused toolbar {
  return tags;
}

- (NSToolbarItem*)toolbar:(NSToolbar*)__unused toolbar
        itemForItemIdentifier:(NSToolbarItemIdentifier)tag
    willBeInsertedIntoToolbar:(BOOL)__unused isInserted {
  NSToolbarItem* const item = makeItem(tag);
  item.target = self;
  item.action = @selector(choose:);
  return item;
}

- (void)choose:(NSToolbarItem*)sender {
  chosen(sender.itemIdentifier);
}

@end

namespace tavelle::appkit {
namespace {

class TabView : public Widget {
 public:
  TabView(NSWindow* window, Send send) : window_(window) {
    tabs_->makeItem = [this](NSToolbarItemIdentifier tag) { return makeItem(tag); };
    tabs_->chosen = [this, send = std::move(send)](NSToolbarItemIdentifier tag) {
      send(view::Selected{utf8(tag)});
      update();
    };
    window_.toolbarStyle = NSWindowToolbarStylePreference;
  }

  ~TabView() override { window_.toolbar = nil; }

  NSView* view() const override { return view_; }

  void update() override {
    const auto chosen = string(Attribute::value);
    for (const auto* tab : children) tab->view().hidden = tab->string(Attribute::tag) != chosen;
    window_.toolbar.selectedItemIdentifier = words(Attribute::value);
  }

  void arrange() override {
    NSMutableArray<NSToolbarItemIdentifier>* const tags = [NSMutableArray array];
    for (const auto* tab : children) {
      if (tab->view().superview != view_) fill(view_, tab->view(), 0);
      [tags addObject:tab->words(Attribute::tag)];
    }
    tabs_->tags = tags;
    NSToolbar* const toolbar = [[NSToolbar alloc] initWithIdentifier:@"tabs"];
    toolbar.delegate = tabs_;
    toolbar.displayMode = NSToolbarDisplayModeIconAndLabel;
    window_.toolbar = toolbar;
    update();
  }

 private:
  NSToolbarItem* makeItem(NSToolbarItemIdentifier tag) const {
    NSToolbarItem* const item = [[NSToolbarItem alloc] initWithItemIdentifier:tag];
    for (const auto* tab : children) {
      if (![tag isEqualToString:tab->words(Attribute::tag)]) continue;
      NSString* const title = tab->words(Attribute::title);
      item.label = title;
      item.image = [NSImage imageWithSystemSymbolName:tab->words(Attribute::symbol) accessibilityDescription:title];
    }
    return item;
  }

  NSWindow* window_;
  NSView* view_ = [[NSView alloc] initWithFrame:NSZeroRect];
  TavelleTabs* tabs_ = [[TavelleTabs alloc] init];
};

}  // namespace

std::unique_ptr<Widget> makeTabView(NSWindow* window, Send send) {
  return std::make_unique<TabView>(window, std::move(send));
}

}  // namespace tavelle::appkit
