#pragma once

#include "llm/JSON.h"

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace tavelle {

// Where the hosted service is reached: scheme and host, no path. Fixed when the program is built; the default lies in a
// domain that is reserved (RFC 2606), so that no token can reach a stranger.
extern const std::string_view hostedServiceBaseURL;

// A model provider: one of a closed list, and what the rest of the program has to know of it. A plain value; nothing
// here has a side effect.
class LLMProvider {
 public:
  enum Case { tavelle, openAI, anthropic, gemini, ollama, custom };

  constexpr LLMProvider(Case value) : case_(value) {}  // NOLINT(google-explicit-constructor): the cases are the values

  // Exact and case-sensitive; any other string is no provider.
  static std::optional<LLMProvider> fromRawValue(std::string_view rawValue);

  // Every provider, in the order of the picker.
  static const std::array<LLMProvider, 6>& allCases();

  // The name under which the choice is stored, all lower case.
  std::string_view rawValue() const;
  std::string_view id() const { return rawValue(); }

  std::string_view displayName() const;

  // What the settings are preset to when the person picks this provider. Base URLs end without a slash.
  std::string_view defaultModel() const;
  std::string_view defaultBaseURL() const;

  bool requiresAPIKey() const;

  constexpr operator Case() const { return case_; }  // NOLINT(google-explicit-constructor): for switch

 private:
  Case case_;
};

}  // namespace tavelle

template <>
struct std::hash<tavelle::LLMProvider> {
  std::size_t operator()(tavelle::LLMProvider provider) const noexcept { return static_cast<std::size_t>(provider); }
};

// A provider is stored as its raw value. Reading any other value throws tavelle::JSONError.
template <>
struct nlohmann::adl_serializer<tavelle::LLMProvider> {
  // NOLINTBEGIN(readability-identifier-naming): the library looks for these names
  static void to_json(tavelle::JSON& json, tavelle::LLMProvider provider);
  static tavelle::LLMProvider from_json(const tavelle::JSON& json);
  // NOLINTEND(readability-identifier-naming)
};
