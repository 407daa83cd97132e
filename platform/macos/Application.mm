#include "platform/macos/Application.h"

#include <cstdlib>
#include <utility>

// Passes on what the application says to a delegate of ours.
@interface TavelleApplicationDelegate : NSObject <NSApplicationDelegate>
- (instancetype)initWithDelegate:(std::weak_ptr<tavelle::ApplicationDelegate>)delegate;
@end

@implementation TavelleApplicationDelegate {
  std::weak_ptr<tavelle::ApplicationDelegate> _delegate;
}

- (instancetype)initWithDelegate:(std::weak_ptr<tavelle::ApplicationDelegate>)delegate {
  self = [super init];
  if (self) _delegate = std::move(delegate);
  return self;
}

- (void)applicationWillFinishLaunching:(NSNotification*)__unused notification {
  if (const auto delegate = _delegate.lock()) delegate->applicationWillFinishLaunching();
}

- (void)applicationDidFinishLaunching:(NSNotification*)__unused notification {
  if (const auto delegate = _delegate.lock()) delegate->applicationDidFinishLaunching();
}

- (BOOL)applicationShouldHandleReopen:(NSApplication*)__unused sender hasVisibleWindows:(BOOL)__unused hasWindows {
  if (const auto delegate = _delegate.lock()) delegate->applicationShouldHandleReopen();
  return NO;  // nothing is left for the application to do
}

- (void)applicationWillTerminate:(NSNotification*)__unused notification {
  if (const auto delegate = _delegate.lock()) delegate->applicationWillTerminate();
}

@end

namespace tavelle {

void MacApplication::setDelegate(std::weak_ptr<ApplicationDelegate> delegate) {
  delegate_ = [[TavelleApplicationDelegate alloc] initWithDelegate:std::move(delegate)];
  NSApplication.sharedApplication.delegate = delegate_;
}

int MacApplication::run(std::span<char*>) {
  [NSApplication.sharedApplication run];
  return EXIT_SUCCESS;
}

void MacApplication::activateIgnoringOtherApps(bool flag) {
  [NSApplication.sharedApplication activateIgnoringOtherApps:flag];
}

void MacApplication::terminate() {
  // On a later turn of the loop: the application's own terminate: does not return.
  dispatch_async(dispatch_get_main_queue(), ^{
    [NSApplication.sharedApplication terminate:nil];
  });
}

}  // namespace tavelle
