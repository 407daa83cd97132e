#include "platform/macos/renderer/Actions.h"

#include <utility>

@implementation TavelleAction {
  std::function<void()> _function;
}

- (instancetype)initWithFunction:(std::function<void()>)function {
  self = [super init];
  if (self) _function = std::move(function);
  return self;
}

- (void)act:(id)__unused sender {
  _function();
}

- (void)controlTextDidChange:(NSNotification*)__unused notification {
  _function();
}

- (void)textDidChange:(NSNotification*)__unused notification {
  _function();
}

@end
