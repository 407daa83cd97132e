#pragma once

#include "platform/UserNotificationCenter.h"

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tavelle::tests {

// What every backend's notifications do. A `Backend` is made afresh for each test and has center(), beRefused(), after
// which the system shows nothing, shown(), the title and the body of each notification as a person reads them, and
// waitUntil(predicate), which serves the loop; false where that takes unreasonably long.
//
//     INSTANTIATE_TYPED_TEST_SUITE_P(InMemory, UserNotificationCenterContract, InMemoryBackend);
template <typename Backend>
class UserNotificationCenterContract : public testing::Test {
 protected:
  using Notifications = std::vector<std::pair<std::string, std::string>>;

  UserNotificationCenter& center() { return backend_.center(); }
  void beRefused() { backend_.beRefused(); }
  Notifications shown() { return backend_.shown(); }

  void add(const std::string& body, const std::string& identifier = "arbitrary") {
    center().add({identifier, {"Tavelle", body, NotificationSound::systemDefault}},
                 [this](bool delivered) { outcomes.push_back(delivered); });
  }
  bool hasOutcomes(std::size_t count) {
    return backend_.waitUntil([&] { return outcomes.size() == count; });
  }

  std::vector<bool> outcomes;

 private:
  Backend backend_;
};

TYPED_TEST_SUITE_P(UserNotificationCenterContract);

TYPED_TEST_P(UserNotificationCenterContract, showsTitleAndBody) {
  this->add("Done!");
  ASSERT_TRUE(this->hasOutcomes(1));
  EXPECT_EQ(this->outcomes, std::vector<bool>{true});
  EXPECT_EQ(this->shown(), (std::vector<std::pair<std::string, std::string>>{{"Tavelle", "Done!"}}));
}

TYPED_TEST_P(UserNotificationCenterContract, showsTextAndNeverMarkup) {
  this->add("<b>a & b</b> &amp; <a href=\"x\">ü</a>\nsecond line");
  ASSERT_TRUE(this->hasOutcomes(1));
  EXPECT_EQ(this->shown().at(0).second, "<b>a & b</b> &amp; <a href=\"x\">ü</a>\nsecond line");
}

TYPED_TEST_P(UserNotificationCenterContract, showsEachRequestInTheOrderInWhichTheyCame) {
  for (int number = 0; number < 20; ++number) this->add("body " + std::to_string(number), std::to_string(number));
  ASSERT_TRUE(this->hasOutcomes(20));
  const auto shown = this->shown();
  ASSERT_EQ(shown.size(), 20U);
  for (std::size_t number = 0; number < 20; ++number) EXPECT_EQ(shown[number].second, "body " + std::to_string(number));
}

TYPED_TEST_P(UserNotificationCenterContract, showsTheSameTextTwice) {
  this->add("Done!", "one");
  this->add("Done!", "another");
  ASSERT_TRUE(this->hasOutcomes(2));
  EXPECT_EQ(this->shown().size(), 2U);
}

TYPED_TEST_P(UserNotificationCenterContract, tellsThatNothingIsShown) {
  this->beRefused();
  this->add("Done!");
  ASSERT_TRUE(this->hasOutcomes(1));
  EXPECT_EQ(this->outcomes, std::vector<bool>{false});
  EXPECT_TRUE(this->shown().empty());
}

TYPED_TEST_P(UserNotificationCenterContract, tellsNobodyWhoDoesNotAsk) {
  this->center().add({"arbitrary", {"Tavelle", "first", NotificationSound::none}}, nullptr);
  this->add("second");
  ASSERT_TRUE(this->hasOutcomes(1));
  EXPECT_EQ(this->shown().size(), 2U);
}

TYPED_TEST_P(UserNotificationCenterContract, grantsAuthorization) {
  std::optional<bool> granted;
  this->center().requestAuthorization(AuthorizationOptions::alert | AuthorizationOptions::sound,
                                      [&](bool is) { granted = is; });
  EXPECT_EQ(granted, true);
}

REGISTER_TYPED_TEST_SUITE_P(UserNotificationCenterContract, showsTitleAndBody, showsTextAndNeverMarkup,
                            showsEachRequestInTheOrderInWhichTheyCame, showsTheSameTextTwice, tellsThatNothingIsShown,
                            tellsNobodyWhoDoesNotAsk, grantsAuthorization);

}  // namespace tavelle::tests
