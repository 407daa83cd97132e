#include "platform/macos/renderer/Controls.h"

#include "platform/macos/renderer/Actions.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tavelle::appkit {
namespace {

constexpr CGFloat rowSpacing = 8;
constexpr CGFloat titleSize = 22;
constexpr CGFloat captionSize = 10;
// Before buttons (750) and windows (490) do, but not to stacks that would be narrow (250).
constexpr NSLayoutPriority yielding = 400;

NSColor* color(const std::string& name) {
  if (name == "secondary") return NSColor.secondaryLabelColor;
  if (name == "green") return NSColor.systemGreenColor;
  if (name == "red") return NSColor.systemRedColor;
  if (name == "orange") return NSColor.systemOrangeColor;
  return NSColor.labelColor;
}

CGFloat fontSize(const std::string& name) {
  if (name == "title") return titleSize;
  if (name == "caption") return captionSize;
  return NSFont.systemFontSize;
}

// On one line where there is room for it, and on as many as it takes where there is not.
class Text : public Widget {
 public:
  Text() {
    label_.lineBreakMode = NSLineBreakByWordWrapping;
    [label_ setContentCompressionResistancePriority:yielding forOrientation:NSLayoutConstraintOrientationHorizontal];
  }

  NSView* view() const override { return label_; }

  void update() override {
    label_.stringValue = words(Attribute::text);
    label_.textColor = color(string(Attribute::color));
    label_.font = font();
    if (attributes.find(Attribute::maximumWidth)) {
      label_.alignment = NSTextAlignmentCenter;
      label_.preferredMaxLayoutWidth = number(Attribute::maximumWidth, 0);
    }
    updateSize();
  }

 private:
  NSFont* font() const {
    const CGFloat size = fontSize(string(Attribute::font));
    if (isTrue(Attribute::bold)) return [NSFont boldSystemFontOfSize:size];
    if (isTrue(Attribute::monospacedDigits)) {
      return [NSFont monospacedDigitSystemFontOfSize:size weight:NSFontWeightRegular];
    }
    return [NSFont systemFontOfSize:size];
  }

  NSTextField* label_ = makeLabel();
};

class Image : public Widget {
 public:
  NSView* view() const override { return image_; }

  void update() override {
    image_.image = [NSImage imageNamed:words(Attribute::image)];
    image_.imageScaling = NSImageScaleProportionallyUpOrDown;
    updateSize();
  }

 private:
  NSImageView* image_ = [[NSImageView alloc] initWithFrame:NSZeroRect];
};

class Button : public Widget {
 public:
  explicit Button(Send send)
      : action_([[TavelleAction alloc] initWithFunction:[send = std::move(send)] { send(view::Pressed{}); }]),
        button_([NSButton buttonWithTitle:@"" target:action_ action:@selector(act:)]) {}

  NSView* view() const override { return button_; }

  void update() override {
    button_.title = words(Attribute::title);
    button_.enabled = isTrue(Attribute::enabled, true);
    button_.controlSize = isTrue(Attribute::small) ? NSControlSizeSmall : NSControlSizeRegular;
    if (!attributes.find(Attribute::symbol)) return;
    NSString* const label = words(Attribute::label);
    button_.image = [NSImage imageWithSystemSymbolName:words(Attribute::symbol) accessibilityDescription:label];
    button_.imagePosition = NSImageOnly;  // an empty title may keep its room otherwise
    button_.toolTip = label;
    button_.accessibilityLabel = label;
  }

 private:
  TavelleAction* action_;
  NSButton* button_;
};

class Slider : public Widget {
 public:
  explicit Slider(Send send)
      : action_([[TavelleAction alloc]
            initWithFunction:[this, send = std::move(send)] { send(view::Adjusted{slider_.doubleValue}); }]) {
    slider_.target = action_;
    slider_.action = @selector(act:);
    slider_.continuous = YES;
  }

  NSView* view() const override { return slider_; }

  void update() override {
    slider_.minValue = number(Attribute::minimum, 0);
    slider_.maxValue = number(Attribute::maximum, 1);
    const double step = number(Attribute::step, 0);
    if (step > 0) {
      slider_.numberOfTickMarks = std::lround((slider_.maxValue - slider_.minValue) / step) + 1;
      slider_.allowsTickMarkValuesOnly = YES;
    }
    slider_.doubleValue = number(Attribute::value, 0);
    slider_.accessibilityLabel = words(Attribute::label);
  }

 private:
  NSSlider* slider_ = [[NSSlider alloc] initWithFrame:NSZeroRect];
  TavelleAction* action_;
};

// What a picker can be set to: drawn by the picker.
class Option : public Widget {
 public:
  NSView* view() const override { return nil; }
  void update() override {
    if (parent) parent->arrange();
  }
};

// A title, and a pop-up button of the options.
class Picker : public Widget {
 public:
  explicit Picker(Send send)
      : action_([[TavelleAction alloc] initWithFunction:[this, send = std::move(send)] { choose(send); }]) {
    popUp_.target = action_;
    popUp_.action = @selector(act:);
    [popUp_ setContentHuggingPriority:1 forOrientation:NSLayoutConstraintOrientationHorizontal];
    [stack_ insertArrangedSubview:title_ atIndex:0];
    [stack_ insertArrangedSubview:popUp_ atIndex:1];
  }

  NSView* view() const override { return stack_; }

  void update() override {
    title_.stringValue = words(Attribute::title);
    popUp_.accessibilityLabel = words(Attribute::title);
    popUp_.enabled = isTrue(Attribute::enabled, true);
    const auto chosen = string(Attribute::value);
    const auto found = std::find_if(children.begin(), children.end(),
                                    [&chosen](const auto* option) { return option->string(Attribute::tag) == chosen; });
    [popUp_ selectItemAtIndex:found == children.end() ? -1 : found - children.begin()];
  }

  void arrange() override {
    NSMenu* const menu = [[NSMenu alloc] initWithTitle:@""];
    for (const auto* option : children) {
      [menu addItem:[[NSMenuItem alloc] initWithTitle:option->words(Attribute::title) action:nil keyEquivalent:@""]];
    }
    popUp_.menu = menu;
    update();
  }

 private:
  void choose(const Send& send) {
    const auto index = popUp_.indexOfSelectedItem;
    if (index < 0 || static_cast<std::size_t>(index) >= children.size()) return;
    send(view::Selected{children[static_cast<std::size_t>(index)]->string(Attribute::tag)});
  }

  NSStackView* stack_ = makeStack(NSUserInterfaceLayoutOrientationHorizontal, rowSpacing);
  NSTextField* title_ = makeLabel();
  NSPopUpButton* popUp_ = [[NSPopUpButton alloc] initWithFrame:NSZeroRect pullsDown:NO];
  TavelleAction* action_;
};

}  // namespace

std::unique_ptr<Widget> makeText() {
  return std::make_unique<Text>();
}

std::unique_ptr<Widget> makeImage() {
  return std::make_unique<Image>();
}

std::unique_ptr<Widget> makeButton(Send send) {
  return std::make_unique<Button>(std::move(send));
}

std::unique_ptr<Widget> makeSlider(Send send) {
  return std::make_unique<Slider>(std::move(send));
}

std::unique_ptr<Widget> makePicker(Send send) {
  return std::make_unique<Picker>(std::move(send));
}

std::unique_ptr<Widget> makeOption() {
  return std::make_unique<Option>();
}

}  // namespace tavelle::appkit
