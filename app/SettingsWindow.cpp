#include "app/SettingsWindow.h"

#include "platform/Platform.h"
#include "ui/SettingsView.h"
#include "view/Reconciler.h"

#include <functional>
#include <utility>

namespace tavelle {

std::unique_ptr<Window> makeSettingsWindow(Platform& platform) {
  auto window = platform.makeWindow({0, 0, 480, 500}, WindowStyleMask::titled | WindowStyleMask::closable,
                                    BackingStoreType::buffered, false);
  window->setTitle("Tavelle Settings");
  window->setReleasedWhenClosed(false);
  window->setContentView(std::make_shared<view::Reconciler>(
      view::component<SettingsView>(),
      [&loop = platform.mainActor()](std::function<void()> job) { loop.post(std::move(job)); }));
  window->center();
  return window;
}

}  // namespace tavelle
