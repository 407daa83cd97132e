#pragma once

#include "settings/SettingsManager.h"
#include "view/Binding.h"

#include <functional>
#include <utility>

namespace tavelle {

// Straight to one of the settings: `settingsBinding(settings, &SettingsManager::model, &SettingsManager::setModel)`.
template <typename Get, typename T>
view::Binding<T> settingsBinding(SettingsManager& settings, Get get, void (SettingsManager::*set)(T)) {
  return {[&settings, get] { return std::invoke(get, settings); },
          [&settings, set](T value) { std::invoke(set, settings, std::move(value)); }};
}

}  // namespace tavelle
