#include "platform/macos/renderer/Containers.h"

#include <algorithm>

// Content of a scroll view that begins at the top.
@interface TavelleFlippedView : NSView
@end

@implementation TavelleFlippedView
- (BOOL)isFlipped {
  return YES;
}
@end

namespace tavelle::appkit {
namespace {

constexpr CGFloat margin = 20;
constexpr CGFloat rowSpacing = 8;
constexpr CGFloat sectionSpacing = 16;
constexpr CGFloat titleSpacing = 6;
constexpr CGFloat boxMargin = 10;

void spanWidth(NSStackView* stack, NSView* view) {
  [view.widthAnchor constraintEqualToAnchor:stack.widthAnchor].active = YES;
}

NSView* makeSpacerView() {
  NSView* const view = [[NSView alloc] initWithFrame:NSZeroRect];
  for (const auto orientation : {NSLayoutConstraintOrientationHorizontal, NSLayoutConstraintOrientationVertical}) {
    [view setContentHuggingPriority:1 forOrientation:orientation];
  }
  return view;
}

// Sections below each other, which scroll where there are too many.
class Form : public Widget {
 public:
  Form() {
    NSView* const content = [[TavelleFlippedView alloc] initWithFrame:NSZeroRect];
    content.translatesAutoresizingMaskIntoConstraints = NO;
    fill(content, stack_, margin);
    scroll_.hasVerticalScroller = YES;
    scroll_.drawsBackground = NO;
    scroll_.documentView = content;
    NSClipView* const clip = scroll_.contentView;
    [NSLayoutConstraint activateConstraints:@[
      [content.topAnchor constraintEqualToAnchor:clip.topAnchor],
      [content.leadingAnchor constraintEqualToAnchor:clip.leadingAnchor],
      [content.widthAnchor constraintEqualToAnchor:clip.widthAnchor],
    ]];
  }

  NSView* view() const override { return scroll_; }
  void update() override { updateSize(); }

  void arrange() override {
    arrangeInStack(stack_, children, 0, [this](NSView* view) { spanWidth(stack_, view); });
  }

 private:
  NSScrollView* scroll_ = [[NSScrollView alloc] initWithFrame:NSZeroRect];
  NSStackView* stack_ = makeStack(NSUserInterfaceLayoutOrientationVertical, sectionSpacing);
};

// A title, and a box of rows.
class Section : public Widget {
 public:
  Section() {
    title_.font = [NSFont boldSystemFontOfSize:NSFont.systemFontSize];
    NSBox* const box = [[NSBox alloc] initWithFrame:NSZeroRect];
    box.titlePosition = NSNoTitle;
    fill(box, rows_, boxMargin);
    [stack_ insertArrangedSubview:title_ atIndex:0];
    [stack_ insertArrangedSubview:box atIndex:1];
    spanWidth(stack_, box);
  }

  NSView* view() const override { return stack_; }

  void update() override {
    title_.stringValue = words(Attribute::title);
    title_.hidden = string(Attribute::title).empty();
    stack_.hidden = children.empty();
  }

  void arrange() override {
    arrangeInStack(rows_, children, 0, [this](NSView* view) {
      if (![view isKindOfClass:NSButton.class]) spanWidth(rows_, view);  // buttons keep their own width
    });
    update();
  }

 private:
  NSStackView* stack_ = makeStack(NSUserInterfaceLayoutOrientationVertical, titleSpacing);
  NSStackView* rows_ = makeStack(NSUserInterfaceLayoutOrientationVertical, rowSpacing);
  NSTextField* title_ = makeLabel();
};

class Spacer : public Widget {
 public:
  NSView* view() const override { return view_; }
  void update() override {}

 private:
  NSView* view_ = makeSpacerView();
};

class Stack : public Widget {
 public:
  NSView* view() const override { return stack_; }

  void update() override {
    stack_.orientation =
        isVertical() ? NSUserInterfaceLayoutOrientationVertical : NSUserInterfaceLayoutOrientationHorizontal;
    stack_.alignment = isVertical() ? NSLayoutAttributeCenterX : NSLayoutAttributeCenterY;
    stack_.spacing = number(Attribute::spacing, rowSpacing);
    updateSize();
  }

  void arrange() override {
    arrangeInStack(stack_, children, 0, [this](NSView* view) {
      if (isSpacer(view)) shareRoom(view);
      if (isVertical() && children.size() == 1) spanWidth(stack_, view);  // what stands alone, as the tabs do
    });
    updateDistribution();
  }

 private:
  bool isVertical() const { return string(Attribute::axis) == "vertical"; }

  // Side by side, children keep their own widths where none of them is made to take more.
  void updateDistribution() {
    const bool stretches = std::any_of(children.begin(), children.end(), [this](const auto* child) {
      return isSpacer(child->view()) || [child->view() isKindOfClass:NSSlider.class];
    });
    stack_.distribution = isVertical() || stretches ? NSStackViewDistributionFill : NSStackViewDistributionGravityAreas;
  }

  bool isSpacer(NSView* view) const {
    return std::any_of(children.begin(), children.end(), [view](const auto* child) {
      return child->view() == view && dynamic_cast<const Spacer*>(child);
    });
  }

  // Spacers share the room that is left, so that what is between two of them is centred.
  void shareRoom(NSView* spacer) {
    for (const auto* child : children) {
      if (child->view() == spacer || !isSpacer(child->view()) || child->view().superview != stack_) continue;
      [spacer.heightAnchor constraintEqualToAnchor:child->view().heightAnchor].active = YES;
      return;
    }
  }

  NSStackView* stack_ = makeStack(NSUserInterfaceLayoutOrientationHorizontal, rowSpacing);
};

// The first on the left, all others on the right; one line high, as its list gives all rows one height.
class Row : public Widget {
 public:
  NSView* view() const override { return stack_; }
  void update() override {}

  void arrange() override {
    if (children.empty()) return;
    arrangeInStack(stack_, {children.front()}, 0, keepOnOneLine);
    if (spacer_.superview != stack_) [stack_ insertArrangedSubview:spacer_ atIndex:1];
    arrangeInStack(stack_, {children.begin() + 1, children.end()}, 2, keepOnOneLine);
  }

 private:
  static void keepOnOneLine(NSView* view) {
    if (![view isKindOfClass:NSTextField.class]) return;
    static_cast<NSTextField*>(view).lineBreakMode = NSLineBreakByTruncatingTail;
  }

  NSStackView* stack_ = makeStack(NSUserInterfaceLayoutOrientationHorizontal, rowSpacing);
  NSView* spacer_ = makeSpacerView();
};

class LabeledContent : public Widget {
 public:
  LabeledContent() {
    [stack_ insertArrangedSubview:title_ atIndex:0];
    [stack_ insertArrangedSubview:makeSpacerView() atIndex:1];
  }

  NSView* view() const override { return stack_; }
  void update() override { title_.stringValue = words(Attribute::title); }
  void arrange() override { arrangeInStack(stack_, children, 2); }

 private:
  NSStackView* stack_ = makeStack(NSUserInterfaceLayoutOrientationHorizontal, rowSpacing);
  NSTextField* title_ = makeLabel();
};

}  // namespace

void Wrapper::arrange() {
  for (const auto* child : children) {
    if (child->view().superview != view_) fill(view_, child->view(), 0);
  }
}

std::unique_ptr<Widget> makeForm() {
  return std::make_unique<Form>();
}

std::unique_ptr<Widget> makeSection() {
  return std::make_unique<Section>();
}

std::unique_ptr<Widget> makeStackWidget() {
  return std::make_unique<Stack>();
}

std::unique_ptr<Widget> makeRow() {
  return std::make_unique<Row>();
}

std::unique_ptr<Widget> makeLabeledContent() {
  return std::make_unique<LabeledContent>();
}

std::unique_ptr<Widget> makeSpacer() {
  return std::make_unique<Spacer>();
}

}  // namespace tavelle::appkit
