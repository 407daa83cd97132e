#pragma once

#include "app/AppDelegate.h"
#include "hotkeys/HotkeyManager.h"
#include "llm/LLMService.h"
#include "platform/fake/FakePlatform.h"
#include "settings/SettingsManager.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

namespace tavelle::tests {

// The application on the fake backend.
class AppFixture : public testing::Test {
 protected:
  void launch() {
    platform.app.setDelegate(app);
    platform.app.run({});
    platform.loop.runUntilIdle();
  }

  FakePlatform platform;
  Platform::Use use{platform};
  std::shared_ptr<AppDelegate> app = std::make_shared<AppDelegate>(platform);
};

}  // namespace tavelle::tests
