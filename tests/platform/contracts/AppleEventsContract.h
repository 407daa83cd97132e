#pragma once

#include "platform/AppleEvents.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tavelle::tests {

// What every backend's event manager does. A `Backend` is made afresh for each test and has manager() and
// openLink(url), by which the system sends the event of a link that the person opens.
//
//     INSTANTIATE_TYPED_TEST_SUITE_P(InMemory, AppleEventsContract, InMemoryBackend);
template <typename Backend>
class AppleEventsContract : public testing::Test {
 protected:
  // Has links noted under this name.
  void listen(const std::string& name, std::uint32_t eventID = kAEGetURL) {
    backend_.manager().setEventHandler(
        [this, name](const AppleEvent& event, AppleEvent&) {
          const auto* const link = event.paramDescriptorForKeyword(keyDirectObject);
          ASSERT_TRUE(link);
          heard.push_back(name + " " + link->stringValue.value_or("nothing"));
          hasOthers = event.paramDescriptorForKeyword(kAEGetURL) != nullptr;
        },
        kInternetEventClass, eventID);
  }
  void openLink(const std::string& url) { backend_.openLink(url); }

  std::vector<std::string> heard;
  bool hasOthers = false;

 private:
  Backend backend_;
};

TYPED_TEST_SUITE_P(AppleEventsContract);

TYPED_TEST_P(AppleEventsContract, givesALinkByteForByteAsTheDirectObject) {
  this->listen("app");
  this->openLink("tavelle://auth?token=a%20b+c%2F&x#y");
  EXPECT_EQ(this->heard, std::vector<std::string>{"app tavelle://auth?token=a%20b+c%2F&x#y"});
  EXPECT_FALSE(this->hasOthers);
}

TYPED_TEST_P(AppleEventsContract, givesLinksInTheirOrder) {
  this->listen("app");
  for (const char* const url : {"tavelle:a", "tavelle:b", "tavelle:a"}) this->openLink(url);
  EXPECT_EQ(this->heard, (std::vector<std::string>{"app tavelle:a", "app tavelle:b", "app tavelle:a"}));
}

TYPED_TEST_P(AppleEventsContract, givesThemToTheHandlerThatTookThePlaceOfAnother) {
  this->listen("first");
  this->listen("second");
  this->openLink("tavelle:a");
  EXPECT_EQ(this->heard, std::vector<std::string>{"second tavelle:a"});
}

TYPED_TEST_P(AppleEventsContract, givesThemToNobodyWhoAskedForAnotherEvent) {
  this->openLink("tavelle:a");
  this->listen("other", kAEGetURL + 1);
  this->openLink("tavelle:b");
  EXPECT_TRUE(this->heard.empty());
}

REGISTER_TYPED_TEST_SUITE_P(AppleEventsContract, givesALinkByteForByteAsTheDirectObject, givesLinksInTheirOrder,
                            givesThemToTheHandlerThatTookThePlaceOfAnother, givesThemToNobodyWhoAskedForAnotherEvent);

}  // namespace tavelle::tests
