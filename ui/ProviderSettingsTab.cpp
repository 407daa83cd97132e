#include "ui/ProviderSettingsTab.h"

#include "llm/LLMService.h"
#include "platform/FirstCharacters.h"
#include "platform/LocalizedError.h"
#include "platform/Platform.h"
#include "ui/SettingsBinding.h"
#include "ui/TavelleAccountSection.h"
#include "view/Nodes.h"

#include <exception>
#include <utility>
#include <vector>

namespace tavelle {

using namespace view;

ProviderSettingsTab::ProviderSettingsTab() {
  observe(settings_.objectWillChange());
}

void ProviderSettingsTab::onAppear() {
  if (settings_.provider().requiresAPIKey()) loadAPIKey();
}

Node ProviderSettingsTab::body() {
  const bool isHosted = settings_.provider() == LLMProvider::tavelle;
  return form(providerSection(), isHosted ? component<TavelleAccountSection>() : connectionSection(), testSection());
}

Node ProviderSettingsTab::providerSection() {
  std::vector<Node> options;
  for (const auto provider : LLMProvider::allCases()) {
    options.push_back(option(std::string{provider.id()}, std::string{provider.displayName()}));
  }
  const Binding<std::string> selection{[this] { return std::string{settings_.provider().id()}; },
                                       [this](const std::string& tag) {
                                         if (const auto chosen = LLMProvider::fromRawValue(tag))
                                           chooseProvider(*chosen);
                                       }};
  return section("Provider", picker("Provider:", selection, std::move(options)).mnemonic("V"));
}

Node ProviderSettingsTab::connectionSection() {
  const Binding<std::string> apiKey{[this] { return apiKeyInput_.get(); },
                                    [this](const std::string& key) {
                                      apiKeyInput_.set(key);
                                      settings_.setAPIKey(key);
                                    }};
  const auto provider = settings_.provider();
  // The fields belong to their provider: a key that is typed for one never reaches another.
  return section(
             "Connection",
             textField("Base URL:", settingsBinding(settings_, &SettingsManager::baseURL, &SettingsManager::setBaseURL))
                 .mnemonic("B"),
             textField("Model:", settingsBinding(settings_, &SettingsManager::model, &SettingsManager::setModel))
                 .mnemonic("M"),
             provider.requiresAPIKey() ? std::optional{secureField("API Key:", apiKey).mnemonic("K")} : std::nullopt)
      .keyed(std::string{provider.id()});
}

Node ProviderSettingsTab::testSection() {
  const auto& result = testResult_.get();
  return section(
      "", horizontalStack(button(isTesting_.get() ? "Testing..." : "Test Connection", [this] { testConnection(); })
                              .mnemonic("T")
                              .disabled(isTesting_.get())
                              .busy(isTesting_.get()),
                          result ? std::optional{text(*result)
                                                     .font(Font::caption)
                                                     .color(result->starts_with("Success") ? Color::green : Color::red)}
                                 : std::nullopt));
}

// What was typed for another provider is not kept.
void ProviderSettingsTab::chooseProvider(LLMProvider provider) {
  if (provider == settings_.provider()) return;
  settings_.setProvider(provider);
  settings_.setBaseURL(std::string{provider.defaultBaseURL()});
  settings_.setModel(std::string{provider.defaultModel()});
  if (provider.requiresAPIKey()) loadAPIKey();
}

// Shows the stored key. As a change of the field it is also stored again; but not where there seems to be none, for
// that would delete the key of a keyring that was merely locked.
void ProviderSettingsTab::loadAPIKey() {
  const auto stored = settings_.apiKey();
  if (stored == apiKeyInput_.get()) return;
  apiKeyInput_.set(stored);
  if (!stored.empty()) settings_.setAPIKey(stored);
}

void ProviderSettingsTab::testConnection() {
  isTesting_.set(true);
  testResult_.set(std::nullopt);
  Platform::current().mainActor().start(test(std::static_pointer_cast<ProviderSettingsTab>(shared_from_this())));
}

// The answer may come when the tab is long gone, and is then nobody's.
Task<void> ProviderSettingsTab::test(std::weak_ptr<ProviderSettingsTab> weak) {
  auto self = weak.lock();
  if (!self) co_return;
  const std::string apiKey = self->apiKeyInput_.get();
  self.reset();

  std::string result;
  try {
    const SettingsManager& settings = SettingsManager::shared();
    const std::string answer =
        co_await LLMService::shared().reword("Hello world", settings.provider(), settings.model(), settings.baseURL(),
                                             apiKey, "Repeat the input exactly.", 0.0);
    result = "Success: \"" + std::string{firstCharacters(answer, 50)} + "\"";
  } catch (const std::exception& error) {
    result = "Error: " + std::string{firstCharacters(localizedDescription(error), 80)};
  }
  self = weak.lock();
  if (!self) co_return;
  self->testResult_.set(std::move(result));
  self->isTesting_.set(false);
}

}  // namespace tavelle
