#pragma once

#include "concurrency/Task.h"
#include "llm/LLMProvider.h"
#include "settings/SettingsManager.h"
#include "view/Component.h"
#include "view/State.h"

#include <memory>
#include <optional>
#include <string>

namespace tavelle {

// The second tab: which provider rewords, how it is reached, and whether that works.
class ProviderSettingsTab : public view::Component {
 public:
  ProviderSettingsTab();

  void onAppear() override;
  view::Node body() override;

  // Sends one short request with what is set now, and shows what came of it.
  void testConnection();

 private:
  view::Node providerSection();
  view::Node connectionSection();
  view::Node testSection();

  void chooseProvider(LLMProvider provider);
  void loadAPIKey();
  static Task<void> test(std::weak_ptr<ProviderSettingsTab> weak);

  SettingsManager& settings_ = SettingsManager::shared();
  view::State<std::string> apiKeyInput_{*this, ""};
  view::State<std::optional<std::string>> testResult_{*this, std::nullopt};
  view::State<bool> isTesting_{*this, false};
};

}  // namespace tavelle
