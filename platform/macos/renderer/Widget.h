#pragma once

#import <AppKit/AppKit.h>

#include "view/Attributes.h"
#include "view/Event.h"
#include "view/NodeType.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace tavelle::appkit {

using view::Attribute;

// Where a widget reports what the person does to it.
using Send = std::function<void(view::Input)>;

// What draws one node: it holds what is said of the node, and the widgets of the node's children in their order.
class Widget {
 public:
  virtual ~Widget() = default;

  // What stands in the parent's view; nil for what the parent draws itself.
  virtual NSView* view() const = 0;

  // Draws what `attributes` say. Never sends anything.
  virtual void update() = 0;

  // Puts the views of `children` where they belong. What is there already stays, with its cursor and its focus.
  virtual void arrange() {}

  std::string string(Attribute attribute) const;
  NSString* words(Attribute attribute) const;
  double number(Attribute attribute, double otherwise) const;
  bool isTrue(Attribute attribute, bool otherwise = false) const;

  view::Attributes attributes;
  std::vector<Widget*> children;
  Widget* parent = nullptr;

 protected:
  // Keeps the view at the sizes that are said.
  void updateSize();

 private:
  void constrain(NSLayoutConstraint* __strong& held, Attribute attribute,
                 NSLayoutConstraint* (^make)(NSView* view, CGFloat points));

  NSLayoutConstraint* width_ = nil;
  NSLayoutConstraint* height_ = nil;
  NSLayoutConstraint* minimumHeight_ = nil;
  NSLayoutConstraint* maximumWidth_ = nil;
};

// Views that several widgets are made of.
NSStackView* makeStack(NSUserInterfaceLayoutOrientation orientation, CGFloat spacing);
NSTextField* makeLabel();

// Fills `outer` with `inner`, with a margin all around.
void fill(NSView* outer, NSView* inner, CGFloat margin);

// Makes the views of `children` the arranged views of `stack`, behind the first `leading` ones, which are its own, and
// tells `added` of each that was not there before.
void arrangeInStack(NSStackView* stack, const std::vector<Widget*>& children, NSUInteger leading,
                    const std::function<void(NSView* view)>& added = {});

}  // namespace tavelle::appkit
