#include "settings/SettingsManager.h"

#include "platform/FatalError.h"
#include "platform/Platform.h"
#include "platform/Shared.h"

#include <cmath>
#include <limits>
#include <optional>
#include <utility>

namespace tavelle {
namespace {

constexpr auto providerKey = "provider";
constexpr auto modelKey = "model";
constexpr auto baseURLKey = "baseURL";
constexpr auto temperatureKey = "temperature";
constexpr auto profilesKey = "rewriteProfiles";
constexpr auto damagedProfilesKey = "damagedRewriteProfiles";

// A layout with a single hotkey came before the profiles.
constexpr auto legacyKeyCodeKey = "hotkeyKeyCode";
constexpr auto legacyModifiersKey = "hotkeyModifiers";
constexpr auto legacyPromptKey = "systemPrompt";

constexpr double defaultTemperature = 0.7;
constexpr std::uint32_t defaultKeyCode = 15;       // R
constexpr std::uint32_t defaultModifiers = 0x300;  // Shift-Command

template <typename T>
std::optional<T> storedValue(const UserDefaults& defaults, const char* key) {
  const auto object = defaults.objectForKey(key);
  const auto* value = object ? std::get_if<T>(&*object) : nullptr;
  return value ? std::optional{*value} : std::nullopt;
}

LLMProvider loadProvider(const UserDefaults& defaults) {
  const auto stored = storedValue<std::string>(defaults, providerKey);
  return (stored ? LLMProvider::fromRawValue(*stored) : std::nullopt).value_or(LLMProvider::openAI);
}

// A number without a fraction that 64 bits hold, however it was stored.
std::optional<std::int64_t> storedWholeNumber(const UserDefaults& defaults, const char* key) {
  if (const auto whole = storedValue<std::int64_t>(defaults, key)) return whole;
  const auto number = storedValue<double>(defaults, key);
  constexpr double limit = 9223372036854775808.0;  // 2^63
  if (!number || !(*number >= -limit && *number < limit) || std::trunc(*number) != *number) return std::nullopt;
  return static_cast<std::int64_t>(*number);
}

double loadTemperature(const UserDefaults& defaults) {
  if (const auto whole = storedValue<std::int64_t>(defaults, temperatureKey)) return static_cast<double>(*whole);
  return storedValue<double>(defaults, temperatureKey).value_or(defaultTemperature);
}

std::uint32_t loadLegacyNumber(const UserDefaults& defaults, const char* key, std::uint32_t fallback) {
  const auto number = storedWholeNumber(defaults, key);
  if (!number) return fallback;
  if (*number < 0 || *number > std::numeric_limits<std::uint32_t>::max()) {
    fatalError(std::string{"the stored \""} + key + "\" is out of range: " + std::to_string(*number));
  }
  return static_cast<std::uint32_t>(*number);
}

// Empty where there are none that can be read. The person gets the first profile back then, and is not asked about a
// file they may never have seen; what stood there is kept for those who wrote it by hand.
std::vector<RewriteProfile> loadStoredProfiles(UserDefaults& defaults) {
  auto stored = defaults.objectForKey(profilesKey);
  if (!stored) return {};
  try {
    if (const auto* const data = std::get_if<DataValue>(&*stored)) return decodeProfiles(data->bytes);
  } catch (const JSONError&) {
  }
  defaults.setObject(*std::move(stored), damagedProfilesKey);
  return {};
}

void storeProfiles(UserDefaults& defaults, const std::vector<RewriteProfile>& profiles) {
  try {
    defaults.setObject(DataValue{encodeProfiles(profiles)}, profilesKey);
  } catch (const JSONError&) {
    // What was stored stays; the profiles hold for this run.
  }
}

}  // namespace

SettingsManager& SettingsManager::shared() {
  return sharedInstance<SettingsManager>();
}

std::unique_ptr<SettingsManager> SettingsManager::makeShared() {
  Platform& platform = Platform::current();
  return std::make_unique<SettingsManager>(platform.standardUserDefaults(), KeychainHelper{platform.keychain()});
}

SettingsManager::SettingsManager(UserDefaults& defaults, KeychainHelper keychain)
    : defaults_(defaults),
      keychain_(keychain),
      provider_(loadProvider(defaults)),
      model_(storedValue<std::string>(defaults, modelKey).value_or("gpt-4o")),
      baseURL_(storedValue<std::string>(defaults, baseURLKey)
                   .value_or(std::string{LLMProvider{LLMProvider::openAI}.defaultBaseURL()})),
      temperature_(loadTemperature(defaults)),
      profiles_(loadProfiles(defaults)) {}

std::vector<RewriteProfile> SettingsManager::loadProfiles(UserDefaults& defaults) {
  if (auto stored = loadStoredProfiles(defaults); !stored.empty()) return stored;

  std::vector<RewriteProfile> profiles{{
      .id = UUID::random(),
      .name = "Reword",
      .keyCode = loadLegacyNumber(defaults, legacyKeyCodeKey, defaultKeyCode),
      .modifiers = loadLegacyNumber(defaults, legacyModifiersKey, defaultModifiers),
      .systemPrompt = storedValue<std::string>(defaults, legacyPromptKey).value_or(std::string{defaultSystemPrompt}),
  }};
  storeProfiles(defaults, profiles);
  for (const auto* key : {legacyKeyCodeKey, legacyModifiersKey, legacyPromptKey}) defaults.removeObjectForKey(key);
  return profiles;
}

void SettingsManager::setProvider(LLMProvider provider) {
  objectWillChange_.send();
  provider_.set(provider);
  defaults_.setObject(std::string{provider.rawValue()}, providerKey);
}

void SettingsManager::setModel(std::string model) {
  objectWillChange_.send();
  model_.set(std::move(model));
  defaults_.setObject(model_.get(), modelKey);
}

void SettingsManager::setBaseURL(std::string baseURL) {
  objectWillChange_.send();
  baseURL_.set(std::move(baseURL));
  defaults_.setObject(baseURL_.get(), baseURLKey);
}

void SettingsManager::setTemperature(double temperature) {
  objectWillChange_.send();
  temperature_.set(temperature);
  defaults_.setObject(temperature, temperatureKey);
}

void SettingsManager::setProfiles(std::vector<RewriteProfile> profiles) {
  objectWillChange_.send();
  profiles_.set(std::move(profiles));
  storeProfiles(defaults_, profiles_.get());
}

std::string SettingsManager::apiKeyAccount() const {
  return "apiKey_" + std::string{provider().rawValue()};
}

std::string SettingsManager::apiKey() const {
  return keychain_.load(apiKeyAccount()).value_or("");
}

void SettingsManager::setAPIKey(const std::string& apiKey) {
  if (apiKey.empty()) {
    keychain_.remove(apiKeyAccount());
  } else {
    try {
      keychain_.save(apiKeyAccount(), apiKey);
    } catch (const KeychainError&) {
      // The field keeps what was typed; the next run without a key says so.
    }
  }
  objectWillChange_.send();
}

}  // namespace tavelle
