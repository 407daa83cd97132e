#pragma once

#include "platform/Window.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace tavelle::tests {

// What a window shows: one button, node 1.
class OneButton : public view::Content {
 public:
  explicit OneButton(std::string title) : title_(std::move(title)) {}

  void attach(view::Renderer* renderer) override {
    renderer_ = renderer;
    if (!renderer) return;
    renderer->apply({0,
                     {view::Create{1, view::NodeType::button, {{view::Attribute::title, title_}}},
                      view::Insert{.parent = 0, .node = 1, .after = 0}}});
  }
  void dispatch(const view::Event& event) override { events.push_back(event); }

  // To be called while it is drawn.
  void changeTitle(const std::string& title) {
    renderer_->apply({0, {view::Update{1, {{view::Attribute::title, title}}}}});
  }
  bool isDrawn() const { return renderer_ != nullptr; }

  std::vector<view::Event> events;

 private:
  std::string title_;
  view::Renderer* renderer_ = nullptr;
};

// What every backend's window does. A `Backend` is made afresh for each test and has window(), closeForGood(), which
// destroys it, and what a person sees and does: isShown(), title(), texts(), the words of the content, press(), which
// presses the content's button once it is shown, and waitUntil(predicate), which serves the loop; false where that
// takes unreasonably long.
//
//     INSTANTIATE_TYPED_TEST_SUITE_P(InMemory, WindowContract, InMemoryBackend);
template <typename Backend>
class WindowContract : public testing::Test {
 protected:
  using Words = std::vector<std::string>;

  void show() {
    backend.window().makeKeyAndOrderFront();
    EXPECT_TRUE(waitUntil([this] { return backend.isShown(); }));
  }
  bool hasTexts(const Words& words) {
    return waitUntil([&] { return backend.texts() == words; });
  }
  bool waitUntil(const std::function<bool()>& isTrue) { return backend.waitUntil(isTrue); }

  Backend backend;
  std::shared_ptr<OneButton> content = std::make_shared<OneButton>("Press");
};

TYPED_TEST_SUITE_P(WindowContract);

TYPED_TEST_P(WindowContract, isHiddenUntilItIsOrderedFront) {
  this->backend.window().setTitle("Settings");
  this->backend.window().setContentView(this->content);
  EXPECT_FALSE(this->backend.isShown());
  this->show();
  EXPECT_EQ(this->backend.title(), "Settings");
  EXPECT_TRUE(this->hasTexts({"Press"}));
  EXPECT_TRUE(this->content->isDrawn());
}

TYPED_TEST_P(WindowContract, drawsWhatChanges) {
  this->backend.window().setContentView(this->content);
  this->show();
  this->content->changeTitle("Press again");
  EXPECT_TRUE(this->hasTexts({"Press again"}));
}

TYPED_TEST_P(WindowContract, passesOnWhatThePersonDoes) {
  this->backend.window().setContentView(this->content);
  this->show();
  this->backend.press();
  ASSERT_TRUE(this->waitUntil([this] { return !this->content->events.empty(); }));
  EXPECT_EQ(this->content->events.front(), (view::Event{1, 1, view::Pressed{}}));
}

TYPED_TEST_P(WindowContract, isShownAgainAsItIs) {
  this->backend.window().setReleasedWhenClosed(false);
  this->backend.window().setContentView(this->content);
  this->show();
  this->show();
  EXPECT_TRUE(this->hasTexts({"Press"}));
  this->backend.press();
  EXPECT_TRUE(this->waitUntil([this] { return !this->content->events.empty(); }));
}

TYPED_TEST_P(WindowContract, drawsTheContentThatTakesThePlaceOfAnother) {
  this->backend.window().setContentView(this->content);
  this->show();
  const auto other = std::make_shared<OneButton>("Other");
  this->backend.window().setContentView(other);
  EXPECT_FALSE(this->content->isDrawn());
  this->show();
  EXPECT_TRUE(this->hasTexts({"Other"}));
  this->backend.press();
  EXPECT_TRUE(this->waitUntil([&] { return !other->events.empty(); }));
  EXPECT_TRUE(this->content->events.empty());
}

TYPED_TEST_P(WindowContract, letsGoOfItsContentWhenItIsGone) {
  this->backend.window().setContentView(this->content);
  this->show();
  this->backend.closeForGood();
  EXPECT_FALSE(this->content->isDrawn());
  EXPECT_EQ(this->content.use_count(), 1);
}

REGISTER_TYPED_TEST_SUITE_P(WindowContract, isHiddenUntilItIsOrderedFront, drawsWhatChanges, passesOnWhatThePersonDoes,
                            isShownAgainAsItIs, drawsTheContentThatTakesThePlaceOfAnother,
                            letsGoOfItsContentWhenItIsGone);

}  // namespace tavelle::tests
