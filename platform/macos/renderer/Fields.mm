#include "platform/macos/Strings.h"
#include "platform/macos/renderer/Actions.h"
#include "platform/macos/renderer/Controls.h"

#include <utility>

namespace tavelle::appkit {
namespace {

constexpr CGFloat rowSpacing = 8;

// A title, and a field of one line.
class TextField : public Widget {
 public:
  TextField(bool isSecure, Send send)
      : field_([[(isSecure ? NSSecureTextField.class : NSTextField.class) alloc] initWithFrame:NSZeroRect]),
        action_([[TavelleAction alloc]
            initWithFunction:[this, send = std::move(send)] { send(view::Edited{utf8(field_.stringValue)}); }]) {
    field_.delegate = action_;
    // What is longer than the field scrolls, where a field wraps by itself and shows the first line only.
    field_.usesSingleLineMode = YES;
    field_.lineBreakMode = NSLineBreakByClipping;
    field_.cell.scrollable = YES;
    [stack_ insertArrangedSubview:title_ atIndex:0];
    [stack_ insertArrangedSubview:field_ atIndex:1];
    [field_ setContentHuggingPriority:1 forOrientation:NSLayoutConstraintOrientationHorizontal];
  }

  NSView* view() const override { return stack_; }

  // A field that is right already is left alone, with its cursor and what an input method is composing.
  void update() override {
    title_.stringValue = words(Attribute::title);
    field_.accessibilityLabel = words(Attribute::title);
    field_.enabled = isTrue(Attribute::enabled, true);
    NSString* const value = words(Attribute::value);
    if (![field_.stringValue isEqualToString:value]) field_.stringValue = value;
  }

 private:
  NSStackView* stack_ = makeStack(NSUserInterfaceLayoutOrientationHorizontal, rowSpacing);
  NSTextField* title_ = makeLabel();
  NSTextField* field_;
  TavelleAction* action_;
};

class TextEditor : public Widget {
 public:
  explicit TextEditor(Send send)
      : scroll_(NSTextView.scrollableTextView),
        text_(scroll_.documentView),
        action_([[TavelleAction alloc]
            initWithFunction:[this, send = std::move(send)] { send(view::Edited{utf8(text_.string)}); }]) {
    text_.delegate = action_;
    text_.richText = NO;
    text_.allowsUndo = YES;
    // A prompt is sent as it was typed.
    text_.automaticQuoteSubstitutionEnabled = NO;
    text_.automaticDashSubstitutionEnabled = NO;
    text_.automaticTextReplacementEnabled = NO;
    text_.automaticSpellingCorrectionEnabled = NO;
    text_.smartInsertDeleteEnabled = NO;
  }

  NSView* view() const override { return scroll_; }

  void update() override {
    text_.accessibilityLabel = words(Attribute::label);
    NSFont* const font = isTrue(Attribute::monospaced)
                             ? [NSFont monospacedSystemFontOfSize:NSFont.systemFontSize weight:NSFontWeightRegular]
                             : [NSFont systemFontOfSize:NSFont.systemFontSize];
    if (text_.font != font) text_.font = font;
    NSString* const value = words(Attribute::value);
    if (![text_.string isEqualToString:value]) show(value);
    updateSize();
  }

 private:
  // What can be undone is of the text that was there.
  void show(NSString* value) {
    text_.string = value;
    [text_.undoManager removeAllActions];
  }

  NSScrollView* scroll_;
  NSTextView* text_;
  TavelleAction* action_;
};

}  // namespace

std::unique_ptr<Widget> makeTextField(bool isSecure, Send send) {
  return std::make_unique<TextField>(isSecure, std::move(send));
}

std::unique_ptr<Widget> makeTextEditor(Send send) {
  return std::make_unique<TextEditor>(std::move(send));
}

}  // namespace tavelle::appkit
