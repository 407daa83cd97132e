#pragma once

#include "llm/KeychainHelper.h"
#include "llm/LLMProvider.h"
#include "observation/Published.h"
#include "observation/Subject.h"
#include "platform/UserDefaults.h"
#include "settings/RewriteProfile.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace tavelle {

// Everything the person can set, written through to the user defaults at every change and never read again while
// running. API keys are in the keychain, one per provider, and nowhere else. Main thread only.
class SettingsManager {
 public:
  static SettingsManager& shared();
  static std::unique_ptr<SettingsManager> makeShared();

  // Loads what is stored, replacing what is missing or unreadable by the defaults: there is always a profile to start
  // with.
  SettingsManager(UserDefaults& defaults, KeychainHelper keychain);

  LLMProvider provider() const { return provider_.get(); }
  const std::string& model() const { return model_.get(); }
  const std::string& baseURL() const { return baseURL_.get(); }
  double temperature() const { return temperature_.get(); }
  const std::vector<RewriteProfile>& profiles() const { return profiles_.get(); }

  // Each tells the observers, then changes the value, then stores it. A value that cannot be stored holds for this run.
  void setProvider(LLMProvider provider);
  void setModel(std::string model);
  void setBaseURL(std::string baseURL);
  void setTemperature(double temperature);
  void setProfiles(std::vector<RewriteProfile> profiles);

  // The key of the provider that is chosen at the moment of the call; empty where there is none. Setting it empty
  // deletes it. The observers are told afterwards.
  std::string apiKey() const;
  void setAPIKey(const std::string& apiKey);

  // Sent before any of the properties changes, and after the API key did.
  Subject<>& objectWillChange() { return objectWillChange_; }

  // The sequence of profile lists: the current one first.
  Published<std::vector<RewriteProfile>>& publishedProfiles() { return profiles_; }

 private:
  static std::vector<RewriteProfile> loadProfiles(UserDefaults& defaults);
  std::string apiKeyAccount() const;

  UserDefaults& defaults_;
  KeychainHelper keychain_;
  Published<LLMProvider> provider_;
  Published<std::string> model_;
  Published<std::string> baseURL_;
  Published<double> temperature_;
  Published<std::vector<RewriteProfile>> profiles_;
  Subject<> objectWillChange_;
};

}  // namespace tavelle
