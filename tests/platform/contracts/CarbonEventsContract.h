#pragma once

#include "platform/CarbonEvents.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

namespace tavelle::tests {

// What every backend's hotkeys do. A `Backend` is made afresh for each test and has carbonEvents(), press(hotKey) and
// holdElsewhere(hotKey), which do with the keyboard what a person and another program do, and pass(), which serves the
// loop until what was pressed has been dealt with.
//
//     INSTANTIATE_TYPED_TEST_SUITE_P(InMemory, CarbonEventsContract, InMemoryBackend);
struct HotKeyCombination {
  std::uint32_t keyCode;
  std::uint32_t modifiers;
};

inline constexpr HotKeyCombination commandShiftX{7, cmdKey | shiftKey};
inline constexpr HotKeyCombination commandShiftY{16, cmdKey | shiftKey};
inline constexpr HotKeyCombination controlOptionX{7, controlKey | optionKey};

template <typename Backend>
class CarbonEventsContract : public testing::Test {
 protected:
  CarbonEventsContract() { EXPECT_EQ(install(&CarbonEventsContract::pressed, this), noErr); }

  CarbonEvents& events() { return backend_.carbonEvents(); }
  EventTargetRef target() { return events().getApplicationEventTarget(); }
  void holdElsewhere(HotKeyCombination keys) { backend_.holdElsewhere(keys); }

  OSStatus install(EventHandlerProc handler, void* userData) {
    constexpr std::array types{EventTypeSpec{kEventClassKeyboard, kEventHotKeyPressed}};
    EventHandlerRef installed = nullptr;
    return events().installEventHandler(target(), handler, types, userData, &installed);
  }

  OSStatus add(HotKeyCombination keys, std::uint32_t number) {
    return events().registerEventHotKey(keys.keyCode, keys.modifiers, {signature, number}, target(), 0, &reference);
  }

  // The numbers of the hotkeys that were pressed.
  std::vector<std::uint32_t> pressesOf(std::initializer_list<HotKeyCombination> all) {
    for (const auto keys : all) backend_.press(keys);
    backend_.pass();
    return presses;
  }

  static constexpr std::uint32_t signature = 0x54564C45;
  EventHotKeyRef reference = nullptr;  // of the last that was registered
  std::vector<std::uint32_t> presses;
  std::vector<OSStatus> otherParameters;  // the statuses of what an event does not have

 private:
  static OSStatus pressed(EventHandlerCallRef, EventRef event, void* self) {
    auto& own = *static_cast<CarbonEventsContract*>(self);
    std::array<char, 2 * sizeof(EventHotKeyID)> space{};
    const auto other = [&](std::uint32_t name, std::uint32_t type, std::size_t size) {
      own.otherParameters.push_back(own.events().getEventParameter(event, name, type, size, space.data()));
    };
    other(0x6E6F6E65, typeEventHotKeyID, sizeof(EventHotKeyID));
    other(kEventParamDirectObject, 0x6C6F6E67, sizeof(EventHotKeyID));
    other(kEventParamDirectObject, typeEventHotKeyID, sizeof(EventHotKeyID) / 2);
    EventHotKeyID id{};
    const auto status =
        own.events().getEventParameter(event, kEventParamDirectObject, typeEventHotKeyID, sizeof id, &id);
    if (status != noErr) return status;
    EXPECT_EQ(id.signature, signature);
    own.presses.push_back(id.id);
    return noErr;
  }

  Backend backend_;
};

TYPED_TEST_SUITE_P(CarbonEventsContract);

TYPED_TEST_P(CarbonEventsContract, tellsWhichHotKeyWasPressed) {
  EXPECT_EQ(this->add(commandShiftX, 1), noErr);
  EXPECT_NE(this->reference, nullptr);
  const auto first = this->reference;
  EXPECT_EQ(this->add(commandShiftY, 2), noErr);
  EXPECT_NE(this->reference, first);
  EXPECT_EQ(this->pressesOf({commandShiftY, commandShiftX, commandShiftY}), (std::vector<std::uint32_t>{2, 1, 2}));
}

TYPED_TEST_P(CarbonEventsContract, tellsCombinationsOfOneKeyApart) {
  EXPECT_EQ(this->add(commandShiftX, 1), noErr);
  EXPECT_EQ(this->add(controlOptionX, 2), noErr);
  EXPECT_EQ(this->pressesOf({controlOptionX, commandShiftX}), (std::vector<std::uint32_t>{2, 1}));
}

TYPED_TEST_P(CarbonEventsContract, hearsOfNothingThatIsNotRegistered) {
  EXPECT_EQ(this->add(commandShiftX, 1), noErr);
  EXPECT_EQ(this->pressesOf({controlOptionX, commandShiftY, commandShiftX}), std::vector<std::uint32_t>{1});
}

TYPED_TEST_P(CarbonEventsContract, refusesACombinationThatAnotherProgramHoldsAndTakesTheOthers) {
  this->holdElsewhere(commandShiftX);
  EXPECT_EQ(this->add(commandShiftX, 1), eventHotKeyExistsErr);
  EXPECT_EQ(this->reference, nullptr);
  EXPECT_EQ(this->add(commandShiftY, 2), noErr);
  EXPECT_EQ(this->pressesOf({commandShiftX, commandShiftY}), std::vector<std::uint32_t>{2});
}

TYPED_TEST_P(CarbonEventsContract, refusesACombinationASecondTime) {
  EXPECT_EQ(this->add(commandShiftX, 1), noErr);
  EXPECT_EQ(this->add(commandShiftX, 2), eventHotKeyExistsErr);
  EXPECT_EQ(this->pressesOf({commandShiftX}), std::vector<std::uint32_t>{1});
}

TYPED_TEST_P(CarbonEventsContract, hearsNoMoreOfWhatIsUnregistered) {
  EXPECT_EQ(this->add(commandShiftX, 1), noErr);
  EXPECT_EQ(this->events().unregisterEventHotKey(this->reference), noErr);
  EXPECT_TRUE(this->pressesOf({commandShiftX}).empty());
}

TYPED_TEST_P(CarbonEventsContract, takesACombinationAgainOnceItIsUnregistered) {
  for (std::uint32_t round = 1; round <= 3; ++round) {
    EXPECT_EQ(this->add(commandShiftX, round), noErr);
    EXPECT_EQ(this->pressesOf({commandShiftX}).back(), round);
    EXPECT_EQ(this->events().unregisterEventHotKey(this->reference), noErr);
  }
}

TYPED_TEST_P(CarbonEventsContract, unregistersNothingTwice) {
  EXPECT_EQ(this->add(commandShiftX, 1), noErr);
  EXPECT_EQ(this->events().unregisterEventHotKey(this->reference), noErr);
  EXPECT_EQ(this->events().unregisterEventHotKey(this->reference), paramErr);
  EXPECT_EQ(this->events().unregisterEventHotKey(nullptr), paramErr);
}

TYPED_TEST_P(CarbonEventsContract, hasNothingInAnEventButTheHotKeysIdentity) {
  EXPECT_EQ(this->add(commandShiftX, 1), noErr);
  this->pressesOf({commandShiftX});
  EXPECT_EQ(this->otherParameters, std::vector<OSStatus>(3, eventParameterNotFoundErr));
  EventHotKeyID id{};
  EXPECT_EQ(this->events().getEventParameter(nullptr, kEventParamDirectObject, typeEventHotKeyID, sizeof id, &id),
            paramErr);
}

TYPED_TEST_P(CarbonEventsContract, needsTheApplicationsTarget) {
  const auto handler = [](EventHandlerCallRef, EventRef, void*) -> OSStatus { return noErr; };
  constexpr std::array types{EventTypeSpec{kEventClassKeyboard, kEventHotKeyPressed}};
  EventHandlerRef installed = nullptr;
  EXPECT_EQ(this->events().installEventHandler(nullptr, handler, types, nullptr, &installed), paramErr);
  EXPECT_EQ(this->events().installEventHandler(this->target(), nullptr, types, nullptr, &installed), paramErr);
  EXPECT_EQ(installed, nullptr);
  EXPECT_EQ(this->events().registerEventHotKey(commandShiftX.keyCode, commandShiftX.modifiers, {1, 1}, nullptr, 0,
                                               &this->reference),
            paramErr);
  EXPECT_EQ(this->reference, nullptr);
}

REGISTER_TYPED_TEST_SUITE_P(CarbonEventsContract, tellsWhichHotKeyWasPressed, tellsCombinationsOfOneKeyApart,
                            hearsOfNothingThatIsNotRegistered,
                            refusesACombinationThatAnotherProgramHoldsAndTakesTheOthers, refusesACombinationASecondTime,
                            hearsNoMoreOfWhatIsUnregistered, takesACombinationAgainOnceItIsUnregistered,
                            unregistersNothingTwice, hasNothingInAnEventButTheHotKeysIdentity,
                            needsTheApplicationsTarget);

}  // namespace tavelle::tests
