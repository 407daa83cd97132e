#pragma once

#include "platform/UserDefaults.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

namespace tavelle::tests {

// What every backend's user defaults do. A `Backend` is made afresh for each test, with empty defaults, and has
// defaults().
//
//     INSTANTIATE_TYPED_TEST_SUITE_P(InMemory, UserDefaultsContract, InMemoryBackend);
template <typename Backend>
class UserDefaultsContract : public testing::Test {
 protected:
  UserDefaults& defaults() { return backend_.defaults(); }

  // What is read back after `value` was set.
  std::optional<DefaultsValue> afterSetting(const DefaultsValue& value) {
    defaults().setObject(value, "key");
    return defaults().objectForKey("key");
  }

 private:
  Backend backend_;
};

TYPED_TEST_SUITE_P(UserDefaultsContract);

TYPED_TEST_P(UserDefaultsContract, hasNothingUnderAKeyThatWasNeverSet) {
  EXPECT_EQ(this->defaults().objectForKey("key"), std::nullopt);
}

TYPED_TEST_P(UserDefaultsContract, readsBackWhatWasSet) {
  for (const DefaultsValue& value :
       {DefaultsValue{true}, DefaultsValue{false}, DefaultsValue{std::string{"text"}}, DefaultsValue{std::string{}},
        DefaultsValue{std::int64_t{0}}, DefaultsValue{0.7}}) {
    EXPECT_EQ(this->afterSetting(value), value) << "kind " << value.index();
  }
}

TYPED_TEST_P(UserDefaultsContract, keepsWholeNumbersAndFractionsApart) {
  EXPECT_EQ(this->afterSetting(1.0), DefaultsValue{1.0});
  EXPECT_EQ(this->afterSetting(std::int64_t{1}), DefaultsValue{std::int64_t{1}});
}

TYPED_TEST_P(UserDefaultsContract, keepsTruthApartFromNumbers) {
  EXPECT_EQ(this->afterSetting(true), DefaultsValue{true});
  EXPECT_EQ(this->afterSetting(std::int64_t{1}), DefaultsValue{std::int64_t{1}});
}

TYPED_TEST_P(UserDefaultsContract, keepsDataApartFromText) {
  EXPECT_EQ(this->afterSetting(DataValue{"text"}), DefaultsValue{DataValue{"text"}});
  EXPECT_EQ(this->afterSetting(std::string{"text"}), DefaultsValue{std::string{"text"}});
}

TYPED_TEST_P(UserDefaultsContract, keepsTheLargestAndSmallestNumbers) {
  using Whole = std::numeric_limits<std::int64_t>;
  using Fraction = std::numeric_limits<double>;
  for (const DefaultsValue& value :
       {DefaultsValue{Whole::max()}, DefaultsValue{Whole::min()}, DefaultsValue{Fraction::max()},
        DefaultsValue{Fraction::denorm_min()}, DefaultsValue{0.1 + 0.2}}) {
    EXPECT_EQ(this->afterSetting(value), value);
  }
}

TYPED_TEST_P(UserDefaultsContract, keepsEveryCharacterOfAText) {
  using namespace std::string_literals;
  const std::string text = "quote \" backslash \\ tab \t NUL \0 e\u0301 \U0001F600"s;
  EXPECT_EQ(this->afterSetting(text), DefaultsValue{text});
}

TYPED_TEST_P(UserDefaultsContract, keepsEveryByteOfData) {
  std::string everyByte;
  for (int byte = 0; byte < 256; ++byte) everyByte += static_cast<char>(byte);
  for (const std::string& bytes :
       {everyByte, std::string{}, std::string{"a\0b", 3}, std::string{"[]"}, std::string{"{ }"},
        std::string{R"([{"name":"Reword"}])"}, std::string{R"({"$data":"x"})"}, std::string{R"({"a":1,"a":2})"},
        std::string{"[1e2]"}, std::string{"[1"}}) {
    EXPECT_EQ(this->afterSetting(DataValue{bytes}), DefaultsValue{DataValue{bytes}}) << bytes;
  }
}

TYPED_TEST_P(UserDefaultsContract, replacesAValueByOneOfAnotherKind) {
  this->afterSetting(std::string{"text"});
  EXPECT_EQ(this->afterSetting(0.5), DefaultsValue{0.5});
}

TYPED_TEST_P(UserDefaultsContract, forgetsAKeyThatIsRemoved) {
  this->defaults().setObject(true, "other");
  this->afterSetting(true);
  this->defaults().removeObjectForKey("key");
  EXPECT_EQ(this->defaults().objectForKey("key"), std::nullopt);
  EXPECT_EQ(this->defaults().objectForKey("other"), DefaultsValue{true});
}

TYPED_TEST_P(UserDefaultsContract, takesTheRemovalOfAKeyThatIsNotThere) {
  this->defaults().removeObjectForKey("key");
  EXPECT_EQ(this->defaults().objectForKey("key"), std::nullopt);
}

REGISTER_TYPED_TEST_SUITE_P(UserDefaultsContract, hasNothingUnderAKeyThatWasNeverSet, readsBackWhatWasSet,
                            keepsWholeNumbersAndFractionsApart, keepsTruthApartFromNumbers, keepsDataApartFromText,
                            keepsTheLargestAndSmallestNumbers, keepsEveryCharacterOfAText, keepsEveryByteOfData,
                            replacesAValueByOneOfAnotherKind, forgetsAKeyThatIsRemoved,
                            takesTheRemovalOfAKeyThatIsNotThere);

}  // namespace tavelle::tests
