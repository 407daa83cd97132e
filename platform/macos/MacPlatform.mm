#include "platform/macos/MacPlatform.h"

#include "platform/Start.h"
#include "platform/macos/SerialExecutor.h"
#include "platform/macos/Window.h"

namespace tavelle {

std::unique_ptr<URLSession> MacPlatform::makeURLSession(const URLSessionConfiguration& configuration) {
  return std::make_unique<MacURLSession>(configuration);
}

std::unique_ptr<SerialExecutor> MacPlatform::makeSerialExecutor() {
  return std::make_unique<DispatchSerialExecutor>();
}

std::unique_ptr<Window> MacPlatform::makeWindow(Rect contentRect, WindowStyleMask styleMask, BackingStoreType backing,
                                                bool defer) {
  return std::make_unique<MacWindow>(contentRect, styleMask, backing, defer);
}

std::variant<std::unique_ptr<Platform>, int> startPlatform(std::span<char*>) {
  return std::make_unique<MacPlatform>();
}

}  // namespace tavelle
