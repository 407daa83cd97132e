#pragma once

#include "platform/fake/FakePlatform.h"
#include "platform/macos/Accessibility.h"
#include "platform/macos/CarbonEvents.h"
#include "platform/macos/Keychain.h"
#include "platform/macos/QuartzEvents.h"
#include "tests/platform/macos/doubles/SystemDouble.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tavelle::tests {

// The macOS backend where it calls C functions, over the doubles of them, and fakes where it calls objects.
class MacOverDoubles : public FakePlatform {
 public:
  CarbonEvents& carbonEvents() override { return macCarbonEvents_; }
  QuartzEvents& quartzEvents() override { return macQuartzEvents_; }
  Accessibility& accessibility() override { return macAccessibility_; }
  Keychain& keychain() override { return macKeychain_; }

 private:
  MacCarbonEvents macCarbonEvents_;
  MacQuartzEvents macQuartzEvents_;
  MacAccessibility macAccessibility_;
  MacKeychain macKeychain_;
};

// Nothing that the system handed out is left when a test has ended.
class MacFixture : public testing::Test {
 protected:
  MacFixture() { resetSystem(); }
  ~MacFixture() override { EXPECT_EQ(liveObjects(), 0); }

  // The calls since the last time, whose names begin so.
  static std::vector<std::string> calls(const std::string& beginning = "") {
    std::vector<std::string> chosen;
    for (const auto& call : system().calls) {
      if (call.starts_with(beginning)) chosen.push_back(call);
    }
    system().calls.clear();
    return chosen;
  }

  MacOverDoubles platform;
};

}  // namespace tavelle::tests
