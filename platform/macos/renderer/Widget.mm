#include "platform/macos/renderer/Widget.h"

#include "platform/macos/Strings.h"

#include <cmath>

namespace tavelle::appkit {

std::string Widget::string(Attribute attribute) const {
  const auto* const value = attributes.get<std::string>(attribute);
  return value ? *value : std::string{};
}

NSString* Widget::words(Attribute attribute) const {
  NSString* const text = nsString(string(attribute));
  return text ? text : @"";
}

double Widget::number(Attribute attribute, double otherwise) const {
  const auto* const value = attributes.get<double>(attribute);
  return value ? *value : otherwise;
}

bool Widget::isTrue(Attribute attribute, bool otherwise) const {
  const auto* const value = attributes.get<bool>(attribute);
  return value ? *value : otherwise;
}

void Widget::updateSize() {
  constrain(width_, Attribute::width, ^(NSView* view, CGFloat points) {
    return [view.widthAnchor constraintEqualToConstant:points];
  });
  constrain(height_, Attribute::height, ^(NSView* view, CGFloat points) {
    return [view.heightAnchor constraintEqualToConstant:points];
  });
  constrain(minimumHeight_, Attribute::minimumHeight, ^(NSView* view, CGFloat points) {
    return [view.heightAnchor constraintGreaterThanOrEqualToConstant:points];
  });
  constrain(maximumWidth_, Attribute::maximumWidth, ^(NSView* view, CGFloat points) {
    return [view.widthAnchor constraintLessThanOrEqualToConstant:points];
  });
}

void Widget::constrain(NSLayoutConstraint* __strong& held, Attribute attribute,
                       NSLayoutConstraint* (^make)(NSView* view, CGFloat points)) {
  const auto* const points = attributes.get<double>(attribute);
  if (points && held) {
    held.constant = *points;
    return;
  }
  held.active = NO;
  held = points ? make(view(), *points) : nil;
  held.active = YES;
}

NSStackView* makeStack(NSUserInterfaceLayoutOrientation orientation, CGFloat spacing) {
  NSStackView* const stack = [[NSStackView alloc] initWithFrame:NSZeroRect];
  stack.orientation = orientation;
  stack.spacing = spacing;
  stack.distribution = NSStackViewDistributionFill;
  const bool isVertical = orientation == NSUserInterfaceLayoutOrientationVertical;
  stack.alignment = isVertical ? NSLayoutAttributeLeading : NSLayoutAttributeCenterY;
  return stack;
}

NSTextField* makeLabel() {
  return [NSTextField labelWithString:@""];
}

void fill(NSView* outer, NSView* inner, CGFloat margin) {
  inner.translatesAutoresizingMaskIntoConstraints = NO;
  if (inner.superview != outer) [outer addSubview:inner];
  [NSLayoutConstraint activateConstraints:@[
    [inner.topAnchor constraintEqualToAnchor:outer.topAnchor constant:margin],
    [inner.leadingAnchor constraintEqualToAnchor:outer.leadingAnchor constant:margin],
    [outer.trailingAnchor constraintEqualToAnchor:inner.trailingAnchor constant:margin],
    [outer.bottomAnchor constraintEqualToAnchor:inner.bottomAnchor constant:margin],
  ]];
}

void arrangeInStack(NSStackView* stack, const std::vector<Widget*>& children, NSUInteger leading,
                    const std::function<void(NSView* view)>& added) {
  NSUInteger index = leading;
  for (const auto* child : children) {
    NSView* const view = child->view();
    if (!view) continue;
    NSArray<NSView*>* const present = stack.arrangedSubviews;
    const bool isNew = view.superview != stack;
    if (index >= present.count || present[index] != view)
      [stack insertArrangedSubview:view atIndex:static_cast<NSInteger>(index)];
    if (isNew && added) added(view);
    ++index;
  }
}

}  // namespace tavelle::appkit
