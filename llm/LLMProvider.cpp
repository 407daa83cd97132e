#include "llm/LLMProvider.h"

#include <algorithm>

namespace tavelle {

constinit const std::string_view hostedServiceBaseURL = TAVELLE_HOSTED_SERVICE_BASE_URL;

namespace {

struct Facts {
  std::string_view rawValue;
  std::string_view displayName;
  std::string_view defaultModel;
  std::string_view defaultBaseURL;
  bool requiresAPIKey;
};

// In the order of the cases.
constexpr std::array<Facts, 6> catalogue{{
    {"tavelle", "Tavelle", "tavelle", TAVELLE_HOSTED_SERVICE_BASE_URL, false},
    {"openai", "OpenAI", "gpt-4o", "https://api.openai.com/v1", true},
    {"anthropic", "Anthropic", "claude-sonnet-4-20250514", "https://api.anthropic.com/v1", true},
    {"gemini", "Gemini", "gemini-2.0-flash", "https://generativelanguage.googleapis.com/v1beta", true},
    {"ollama", "Ollama", "llama3.2", "http://localhost:11434/v1", false},
    {"custom", "Custom", "", "", true},
}};

const Facts& factsOf(LLMProvider provider) {
  return catalogue.at(provider);
}

}  // namespace

std::optional<LLMProvider> LLMProvider::fromRawValue(std::string_view rawValue) {
  const auto found = std::find_if(allCases().begin(), allCases().end(),
                                  [rawValue](LLMProvider provider) { return provider.rawValue() == rawValue; });
  if (found == allCases().end()) return std::nullopt;
  return *found;
}

const std::array<LLMProvider, 6>& LLMProvider::allCases() {
  static constexpr std::array<LLMProvider, 6> all{tavelle, openAI, anthropic, gemini, ollama, custom};
  return all;
}

std::string_view LLMProvider::rawValue() const {
  return factsOf(*this).rawValue;
}
std::string_view LLMProvider::displayName() const {
  return factsOf(*this).displayName;
}
std::string_view LLMProvider::defaultModel() const {
  return factsOf(*this).defaultModel;
}
std::string_view LLMProvider::defaultBaseURL() const {
  return factsOf(*this).defaultBaseURL;
}
bool LLMProvider::requiresAPIKey() const {
  return factsOf(*this).requiresAPIKey;
}

}  // namespace tavelle

void nlohmann::adl_serializer<tavelle::LLMProvider>::to_json(tavelle::JSON& json, tavelle::LLMProvider provider) {
  json = std::string{provider.rawValue()};
}

tavelle::LLMProvider nlohmann::adl_serializer<tavelle::LLMProvider>::from_json(const tavelle::JSON& json) {
  using tavelle::LLMProvider;
  const auto provider = json.is_string() ? LLMProvider::fromRawValue(json.get_ref<const std::string&>()) : std::nullopt;
  if (!provider) throw tavelle::JSONError{"The provider is not one that is known."};
  return *provider;
}
