#include "app/AppDelegate.h"
#include "platform/Start.h"

#include <memory>
#include <span>
#include <variant>

int main(int count, char** words) {
  using namespace tavelle;

  const std::span arguments{words, static_cast<std::size_t>(count)};
  const auto started = startPlatform(arguments);
  if (const auto* status = std::get_if<int>(&started)) return *status;

  Platform& platform = *std::get<std::unique_ptr<Platform>>(started);
  const Platform::Use inUse{platform};
  const auto delegate = std::make_shared<AppDelegate>(platform);
  platform.application().setDelegate(delegate);
  return platform.application().run(arguments);
}
