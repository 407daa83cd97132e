#pragma once

#include "settings/RewriteProfile.h"
#include "tests/ui/UIFixture.h"
#include "ui/GeneralSettingsTab.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace tavelle::tests {

// NSEventModifierFlags.
inline constexpr std::uint32_t capsLock = 0x10000;
inline constexpr std::uint32_t shift = 0x20000;
inline constexpr std::uint32_t command = 0x100000;

// The first tab.
class GeneralSettingsTabFixture : public UIFixture {
 protected:
  // The tab, with these profiles stored.
  void showWith(std::vector<RewriteProfile> profiles) {
    settings().setProfiles(std::move(profiles));
    show<GeneralSettingsTab>();
    platform.defaults.writes.clear();
  }

  static RewriteProfile profile(std::string name, std::uint32_t keyCode = 0, std::uint32_t modifiers = 0) {
    auto prompt = "prompt of " + name;
    return {UUID::random(), std::move(name), keyCode, modifiers, std::move(prompt)};
  }

  const RewriteProfile& stored(std::size_t index) { return settings().profiles().at(index); }
  std::string selected() { return screen->widget(NodeType::list).string(Attribute::value); }
  void select(std::size_t index) { choose(NodeType::list, stored(index).id.uuidString()); }
  const view::HeadlessRenderer::Widget& slider() { return screen->widget(NodeType::slider); }

  // The button of the hotkey row.
  std::string hotkeyTitle() { return screen->widget("Hotkey:").children.at(0)->string(Attribute::title); }
};

}  // namespace tavelle::tests
