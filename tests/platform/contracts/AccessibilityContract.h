#pragma once

#include "platform/Accessibility.h"

#include <gtest/gtest.h>

namespace tavelle::tests {

// What every backend says of its trust. A `Backend` is made afresh for each test, for a process that may post keys or
// for one that may not, and has accessibility().
//
//     INSTANTIATE_TYPED_TEST_SUITE_P(InMemory, AccessibilityContract, InMemoryBackend);
template <typename Backend>
class AccessibilityContract : public testing::Test {
 protected:
  static void expectTrust(bool isTrusted) {
    Backend backend{isTrusted};
    auto& accessibility = backend.accessibility();
    EXPECT_EQ(accessibility.isProcessTrusted(), isTrusted);
    for (const bool asks : {false, true}) {
      EXPECT_EQ(accessibility.isProcessTrustedWithOptions({{trustedCheckOptionPrompt, asks}}), isTrusted);
    }
    EXPECT_EQ(accessibility.isProcessTrustedWithOptions({}), isTrusted);
    EXPECT_EQ(accessibility.isProcessTrusted(), isTrusted) << "asking changes nothing";
  }
};

TYPED_TEST_SUITE_P(AccessibilityContract);

TYPED_TEST_P(AccessibilityContract, trustsAProcessThatMayPostKeys) {
  this->expectTrust(true);
}

TYPED_TEST_P(AccessibilityContract, doesNotTrustOneThatMayNot) {
  this->expectTrust(false);
}

REGISTER_TYPED_TEST_SUITE_P(AccessibilityContract, trustsAProcessThatMayPostKeys, doesNotTrustOneThatMayNot);

}  // namespace tavelle::tests
