#include "platform/macos/Window.h"

#include "platform/macos/Strings.h"

#include <utility>

// The editing commands are otherwise the main menu's to pass on, and Tavelle has none.
@interface TavelleWindow : NSWindow
@end

@implementation TavelleWindow

- (BOOL)performKeyEquivalent:(NSEvent*)event {
  return [super performKeyEquivalent:event] || [self performEditingCommand:event];
}

- (BOOL)performEditingCommand:(NSEvent*)event {
  const auto modifiers = event.modifierFlags & (NSEventModifierFlagCommand | NSEventModifierFlagShift |
                                                NSEventModifierFlagOption | NSEventModifierFlagControl);
  // With Command held, layouts of other scripts give the Latin letters, as the system's own menus have them.
  NSString* const key = event.characters.lowercaseString;
  NSDictionary<NSString*, NSString*>* const commands = @{
    @"x" : @"cut:",
    @"c" : @"copy:",
    @"v" : @"paste:",
    @"a" : @"selectAll:",
    @"z" : @"undo:",
    @"w" : @"performClose:",
  };
  NSString* command = nil;
  if (modifiers == NSEventModifierFlagCommand && key) command = commands[key];
  if (modifiers == (NSEventModifierFlagCommand | NSEventModifierFlagShift) && [key isEqualToString:@"z"]) {
    command = @"redo:";
  }
  return command && [NSApplication.sharedApplication sendAction:NSSelectorFromString(command) to:nil from:self];
}

@end

namespace tavelle {

MacWindow::MacWindow(Rect contentRect, WindowStyleMask styleMask, BackingStoreType backing, bool defer)
    : window_([[TavelleWindow alloc]
          initWithContentRect:NSMakeRect(contentRect.x, contentRect.y, contentRect.width, contentRect.height)
                    styleMask:static_cast<NSWindowStyleMask>(styleMask)
                      backing:static_cast<NSBackingStoreType>(backing)
                        defer:defer]) {}

MacWindow::~MacWindow() {
  if (content_) content_->attach(nullptr);
  renderer_.reset();
  [window_ close];
}

void MacWindow::setTitle(std::string title) {
  NSString* const text = nsString(title);
  window_.title = text ? text : @"";
}

void MacWindow::setContentView(std::shared_ptr<view::Content> content) {
  if (content_) content_->attach(nullptr);
  content_ = std::move(content);
  renderer_.emplace(window_, [this](const view::Event& event) { content_->dispatch(event); });
  content_->attach(&*renderer_);
}

void MacWindow::setReleasedWhenClosed(bool isReleased) {
  window_.releasedWhenClosed = isReleased;
}

void MacWindow::center() {
  [window_ center];
}

void MacWindow::makeKeyAndOrderFront() {
  [window_ makeKeyAndOrderFront:nil];
}

}  // namespace tavelle
