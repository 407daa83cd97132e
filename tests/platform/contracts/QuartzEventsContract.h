#pragma once

#include "platform/QuartzEvents.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace tavelle::tests {

// What every backend's synthetic keys do. A `Backend` is made afresh for each test and has quartzEvents() and
// received(), which serves the loop and tells what the application in front has got so far: "copy", "paste", and other
// keys by the letter that they type.
//
//     INSTANTIATE_TYPED_TEST_SUITE_P(InMemory, QuartzEventsContract, InMemoryBackend);
template <typename Backend>
class QuartzEventsContract : public testing::Test {
 protected:
  using Strokes = std::vector<std::string>;
  struct Key {
    std::unique_ptr<KeyboardEvent> down;
    std::unique_ptr<KeyboardEvent> up;
  };

  QuartzEvents& events() { return backend_.quartzEvents(); }

  Key make(std::uint16_t keyCode, std::uint64_t flags) {
    const auto source = events().createEventSource(EventSourceStateID::hidSystemState);
    EXPECT_NE(source, nullptr);
    Key key{events().createKeyboardEvent(source.get(), keyCode, true),
            events().createKeyboardEvent(source.get(), keyCode, false)};
    EXPECT_TRUE(key.down && key.up);
    if (flags != 0) {
      events().setFlags(*key.down, flags);
      events().setFlags(*key.up, flags);
    }
    return key;
  }
  void post(const KeyboardEvent& event) { events().post(EventTapLocation::hidEventTap, event); }
  void press(const Key& key) {
    post(*key.down);
    post(*key.up);
  }

  // Once there are this many.
  Strokes received(std::size_t count) { return backend_.received(count); }

 private:
  Backend backend_;
};

inline constexpr std::uint16_t keyCodeOfQ = 12;

TYPED_TEST_SUITE_P(QuartzEventsContract);

TYPED_TEST_P(QuartzEventsContract, copiesAndPastesByCommandCAndCommandV) {
  this->press(this->make(kVK_ANSI_C, eventFlagMaskCommand));
  this->press(this->make(kVK_ANSI_V, eventFlagMaskCommand));
  EXPECT_EQ(this->received(2), (std::vector<std::string>{"copy", "paste"}));
}

TYPED_TEST_P(QuartzEventsContract, keepsTheOrderInWhichKeysArePosted) {
  const auto paste = this->make(kVK_ANSI_V, eventFlagMaskCommand);
  const auto copy = this->make(kVK_ANSI_C, eventFlagMaskCommand);
  for (const auto* const key : {&paste, &copy, &copy, &paste}) this->press(*key);
  EXPECT_EQ(this->received(4), (std::vector<std::string>{"paste", "copy", "copy", "paste"}));
}

TYPED_TEST_P(QuartzEventsContract, makesNoStrokeOfAKeyThatComesUpAlone) {
  const auto copy = this->make(kVK_ANSI_C, eventFlagMaskCommand);
  this->post(*copy.up);
  this->press(this->make(kVK_ANSI_V, eventFlagMaskCommand));
  EXPECT_EQ(this->received(1), std::vector<std::string>{"paste"});
}

TYPED_TEST_P(QuartzEventsContract, makesNothingBeforeItIsPosted) {
  const auto copy = this->make(kVK_ANSI_C, eventFlagMaskCommand);
  this->press(this->make(kVK_ANSI_V, eventFlagMaskCommand));
  EXPECT_EQ(this->received(1), std::vector<std::string>{"paste"});
}

TYPED_TEST_P(QuartzEventsContract, typesAKeyThatHasNoFlags) {
  this->press(this->make(keyCodeOfQ, 0));
  this->press(this->make(kVK_ANSI_C, 0));
  EXPECT_EQ(this->received(2), (std::vector<std::string>{"q", "c"}));
}

TYPED_TEST_P(QuartzEventsContract, needsNoSource) {
  const auto down = this->events().createKeyboardEvent(nullptr, keyCodeOfQ, true);
  const auto up = this->events().createKeyboardEvent(nullptr, keyCodeOfQ, false);
  ASSERT_TRUE(down && up);
  this->post(*down);
  this->post(*up);
  EXPECT_EQ(this->received(1), std::vector<std::string>{"q"});
}

REGISTER_TYPED_TEST_SUITE_P(QuartzEventsContract, copiesAndPastesByCommandCAndCommandV,
                            keepsTheOrderInWhichKeysArePosted, makesNoStrokeOfAKeyThatComesUpAlone,
                            makesNothingBeforeItIsPosted, typesAKeyThatHasNoFlags, needsNoSource);

}  // namespace tavelle::tests
