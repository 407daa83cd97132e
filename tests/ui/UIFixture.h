#pragma once

#include "platform/fake/FakePlatform.h"
#include "settings/SettingsManager.h"
#include "view/Component.h"
#include "view/Nodes.h"
#include "view/Reconciler.h"
#include "view/headless/HeadlessRenderer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace tavelle::tests {

using view::Attribute;
using view::NodeType;

// A part of the settings window on the fake backend, and a person in front of it.
class UIFixture : public testing::Test {
 protected:
  void TearDown() override {
    reconciler.reset();
    platform.loop.runToEnd();
    cancel(platform.network);  // their coroutines hold what the platform is made of
    cancel(platform.sharedNetwork);
  }

  // A new view of it, in place of the one before.
  template <typename T>
  void show() {
    reconciler = std::make_shared<view::Reconciler>(
        view::component<T>(), [this](std::function<void()> job) { platform.loop.post(std::move(job)); });
    screen =
        std::make_unique<view::HeadlessRenderer>([this](const view::Event& event) { reconciler->dispatch(event); });
    reconciler->attach(screen.get());
  }

  // Lets everything happen that is due, short of time passing.
  void settle() { platform.loop.runUntilIdle(); }

  void press(std::string_view name) {
    screen->press(name);
    settle();
  }
  void enter(std::string_view field, std::string_view text) {
    screen->replaceText(screen->widget(field), text);
    settle();
  }
  void type(std::string_view text) {
    screen->type(text);
    settle();
  }
  void choose(NodeType chooser, std::string_view tag) {
    screen->choose(screen->widget(chooser), tag);
    settle();
  }
  void keyDown(std::uint16_t keyCode, std::uint32_t modifierFlags, std::string_view text = "") {
    screen->keyDown({keyCode, modifierFlags}, text);
    settle();
  }

  // Everything that can be read in the section with this header, from the top.
  std::vector<std::string> section(std::size_t index) const {
    std::vector<std::string> words;
    collect(screen->widget(NodeType::section, index), words);
    return words;
  }
  std::string styleOf(std::string_view words, Attribute attribute) const {
    return screen->widget(words).string(attribute);
  }

  static SettingsManager& settings() { return SettingsManager::shared(); }

  FakePlatform platform;
  Platform::Use use{platform};
  std::shared_ptr<view::Reconciler> reconciler;
  std::unique_ptr<view::HeadlessRenderer> screen;

 private:
  void cancel(FakeURLSession::Exchange& network) {
    while (!network.inFlight.empty()) {
      network.fail({URLError::Code::cancelled, "cancelled"});
      platform.loop.runToEnd();
    }
  }

  static void collect(const view::HeadlessRenderer::Widget& widget, std::vector<std::string>& words) {
    for (const auto attribute : {Attribute::title, Attribute::text, Attribute::symbol}) {
      if (auto said = widget.string(attribute); !said.empty()) words.push_back(std::move(said));
    }
    for (const auto& child : widget.children) collect(*child, words);
  }
};

}  // namespace tavelle::tests
