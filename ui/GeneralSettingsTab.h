#pragma once

#include "platform/UUID.h"
#include "settings/RewriteProfile.h"
#include "settings/SettingsManager.h"
#include "view/Binding.h"
#include "view/Component.h"
#include "view/State.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tavelle {

// The first tab: the profiles with their hotkeys and prompts, the accessibility permission, the temperature. Every edit
// is stored at once.
class GeneralSettingsTab : public view::Component {
 public:
  GeneralSettingsTab();

  void onAppear() override;
  view::Node body() override;

  // Appends a profile without a hotkey, and selects it.
  void addProfile();
  // Removes the selected profile and selects the first that is left. The last one stays.
  void removeProfile();

 private:
  view::Node profilesSection();
  view::Node profileSettingsSection(std::size_t index);
  view::Node promptSection(std::size_t index);
  view::Node accessibilitySection();
  view::Node temperatureSection();

  bool canRemoveProfile() const;
  std::optional<std::size_t> selectedIndex() const;
  view::Binding<std::string> binding(std::size_t index, std::string RewriteProfile::*field);
  void requireProfile(std::size_t index) const;
  void change(std::size_t index, const std::function<void(RewriteProfile&)>& edit);
  void recordHotkey(const view::KeyDown& event);
  static void grantAccess();

  SettingsManager& settings_ = SettingsManager::shared();
  view::State<std::optional<UUID>> selectedProfileID_{*this, std::nullopt};
  view::State<bool> isRecordingHotkey_{*this, false};
};

}  // namespace tavelle
