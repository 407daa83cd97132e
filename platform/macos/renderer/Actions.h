#pragma once

#import <AppKit/AppKit.h>

#include <functional>

// Calls a function for what a control sends to its target, and for what it tells its delegate of editing.
@interface TavelleAction : NSObject <NSTextFieldDelegate, NSTextViewDelegate>
- (instancetype)initWithFunction:(std::function<void()>)function;
- (void)act:(id)sender;
@end
