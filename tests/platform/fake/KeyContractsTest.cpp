#include "platform/fake/FakePlatform.h"
#include "tests/platform/contracts/AccessibilityContract.h"
#include "tests/platform/contracts/CarbonEventsContract.h"
#include "tests/platform/contracts/QuartzEventsContract.h"

#include <string>
#include <vector>

namespace tavelle::tests {
namespace {

struct HotKeysInMemory {
  CarbonEvents& carbonEvents() { return fake; }
  void holdElsewhere(HotKeyCombination keys) { fake.taken.insert(keys.keyCode); }
  void press(HotKeyCombination keys) {
    for (const auto& [number, hotKey] : fake.registered()) {
      if (hotKey.keyCode == keys.keyCode && hotKey.modifiers == keys.modifiers) fake.press(number);
    }
  }
  void pass() {}

  EventLog log;
  FakeCarbonEvents fake{log};
};

struct KeysInMemory {
  KeysInMemory() {
    fake.onCopy = [this] { strokes.emplace_back("copy"); };
    fake.onPaste = [this] { strokes.emplace_back("paste"); };
    fake.onOtherKey = [this](std::uint16_t keyCode) { strokes.emplace_back(keyCode == kVK_ANSI_C ? "c" : "q"); };
  }
  QuartzEvents& quartzEvents() { return fake; }
  std::vector<std::string> received(std::size_t) { return strokes; }

  EventLog log;
  FakeQuartzEvents fake{log};
  std::vector<std::string> strokes;
};

struct TrustInMemory {
  explicit TrustInMemory(bool isTrusted) { fake.trusted = isTrusted; }
  Accessibility& accessibility() { return fake; }

  EventLog log;
  FakeAccessibility fake{log};
};

INSTANTIATE_TYPED_TEST_SUITE_P(InMemory, CarbonEventsContract, HotKeysInMemory);
INSTANTIATE_TYPED_TEST_SUITE_P(InMemory, QuartzEventsContract, KeysInMemory);
INSTANTIATE_TYPED_TEST_SUITE_P(InMemory, AccessibilityContract, TrustInMemory);

}  // namespace
}  // namespace tavelle::tests
