#include "platform/macos/renderer/Controls.h"

#include <algorithm>
#include <utility>

// The rows of a list as their widgets draw them.
@interface TavelleListSource : NSObject <NSTableViewDataSource, NSTableViewDelegate> {
 @public
  std::vector<tavelle::appkit::Widget*>* rows;
  std::function<void(NSInteger row)> selected;
}
@end

@implementation TavelleListSource

- (NSInteger)numberOfRowsInTableView:(NSTableView*)__unused tableView {
  return static_cast<NSInteger>(rows->size());
}

- (NSView*)tableView:(NSTableView*)__unused tableView
    viewForTableColumn:(NSTableColumn*)__unused column
                   row:(NSInteger)row {
  return (*rows)[static_cast<std::size_t>(row)]->view();
}

- (void)tableViewSelectionDidChange:(NSNotification*)notification {
  NSTableView* const table = notification.object;
  selected(table.selectedRow);
}

@end

namespace tavelle::appkit {
namespace {

class List : public Widget {
 public:
  explicit List(Send send) {
    source_->rows = &children;
    source_->selected = [this, send = std::move(send)](NSInteger row) {
      if (isUpdating_) return;
      send(view::Selected{row < 0 ? "" : children[static_cast<std::size_t>(row)]->string(Attribute::tag)});
    };
    NSTableColumn* const column = [[NSTableColumn alloc] initWithIdentifier:@"row"];
    [table_ addTableColumn:column];
    table_.headerView = nil;
    table_.allowsEmptySelection = YES;
    table_.dataSource = source_;
    table_.delegate = source_;
    scroll_.documentView = table_;
    scroll_.hasVerticalScroller = YES;
  }

  ~List() override {
    table_.dataSource = nil;
    table_.delegate = nil;
  }

  NSView* view() const override { return scroll_; }

  void update() override {
    table_.accessibilityLabel = words(Attribute::label);
    select();
    updateSize();
  }

  void arrange() override {
    isUpdating_ = true;
    [table_ sizeLastColumnToFit];
    [table_ reloadData];
    isUpdating_ = false;
    select();
  }

 private:
  void select() {
    isUpdating_ = true;
    const auto chosen = string(Attribute::value);
    const auto found = std::find_if(children.begin(), children.end(),
                                    [&chosen](const auto* row) { return row->string(Attribute::tag) == chosen; });
    NSIndexSet* const rows = found == children.end()
                                 ? [NSIndexSet indexSet]
                                 : [NSIndexSet indexSetWithIndex:static_cast<NSUInteger>(found - children.begin())];
    [table_ selectRowIndexes:rows byExtendingSelection:NO];
    isUpdating_ = false;
  }

  NSScrollView* scroll_ = [[NSScrollView alloc] initWithFrame:NSZeroRect];
  NSTableView* table_ = [[NSTableView alloc] initWithFrame:NSZeroRect];
  TavelleListSource* source_ = [[TavelleListSource alloc] init];
  bool isUpdating_ = false;
};

}  // namespace

std::unique_ptr<Widget> makeList(Send send) {
  return std::make_unique<List>(std::move(send));
}

}  // namespace tavelle::appkit
