#pragma once

#include "platform/StatusBar.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace tavelle::tests {

// What every backend's status bar does. A `Backend` is made afresh for each test and has statusBar(), image(), and what
// a person sees and does there: shown(), the entries of the item's menu, each as its title, "-" for a separator, with
// " (disabled)" behind one that cannot be chosen, and nothing where there is no item; and choose(title), which returns
// once the choice has had its effect.
//
//     INSTANTIATE_TYPED_TEST_SUITE_P(InMemory, StatusBarContract, InMemoryBackend);
template <typename Backend>
class StatusBarContract : public testing::Test {
  Backend backend_;

 protected:
  using Words = std::vector<std::string>;

  void makeItem() { item = backend_.statusBar().statusItemWithLength(squareStatusItemLength); }
  std::shared_ptr<Image> image() { return backend_.image(); }
  Words shown() { return backend_.shown(); }
  void choose(const std::string& title) { backend_.choose(title); }

  MenuItem noting(const std::string& title, const std::string& keyEquivalent = "") {
    return {title, [this, title] { chosen.push_back(title); }, keyEquivalent};
  }

  std::unique_ptr<StatusItem> item;
  Words chosen;
};

TYPED_TEST_SUITE_P(StatusBarContract);

TYPED_TEST_P(StatusBarContract, showsTheMenuOfItsItem) {
  this->makeItem();
  EXPECT_TRUE(this->item->hasButton());
  this->item->setMenu({this->noting("Reword Selection"),
                       MenuItem::separator(),
                       {"Under_score & <b>", nullptr, ""},
                       this->noting("Settings...", ",")});
  EXPECT_EQ(this->shown(),
            (std::vector<std::string>{"Reword Selection", "-", "Under_score & <b> (disabled)", "Settings..."}));
}

TYPED_TEST_P(StatusBarContract, doesWhatIsChosen) {
  this->makeItem();
  this->item->setMenu({this->noting("One"), MenuItem::separator(), this->noting("Two", "q")});
  for (const char* const title : {"Two", "One", "Two"}) this->choose(title);
  EXPECT_EQ(this->chosen, (std::vector<std::string>{"Two", "One", "Two"}));
}

TYPED_TEST_P(StatusBarContract, showsTheMenuThatWasSetLast) {
  this->makeItem();
  this->item->setMenu({this->noting("Old"), this->noting("Older")});
  this->item->setMenu({this->noting("New")});
  EXPECT_EQ(this->shown(), std::vector<std::string>{"New"});
  this->choose("New");
  EXPECT_EQ(this->chosen, std::vector<std::string>{"New"});
}

TYPED_TEST_P(StatusBarContract, takesAnImageAndNone) {
  this->makeItem();
  this->item->setMenu({this->noting("One")});
  this->item->setButtonImage(this->image());
  this->item->setButtonImage(nullptr);
  EXPECT_EQ(this->shown(), std::vector<std::string>{"One"});
}

TYPED_TEST_P(StatusBarContract, showsNoItemThatIsGone) {
  this->makeItem();
  this->item->setMenu({this->noting("One")});
  EXPECT_EQ(this->shown(), std::vector<std::string>{"One"});
  this->item.reset();
  EXPECT_EQ(this->shown(), std::vector<std::string>{});
}

TYPED_TEST_P(StatusBarContract, lastsThroughAChoiceThatEndsTheItem) {
  this->makeItem();
  this->item->setMenu({{"Quit", [this] { this->item.reset(); }, "q"}});
  this->choose("Quit");
  EXPECT_EQ(this->item, nullptr);
  EXPECT_EQ(this->shown(), std::vector<std::string>{});
}

REGISTER_TYPED_TEST_SUITE_P(StatusBarContract, showsTheMenuOfItsItem, doesWhatIsChosen, showsTheMenuThatWasSetLast,
                            takesAnImageAndNone, showsNoItemThatIsGone, lastsThroughAChoiceThatEndsTheItem);

}  // namespace tavelle::tests
