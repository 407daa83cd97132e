#pragma once

#include "llm/JSON.h"
#include "platform/Data.h"
#include "platform/UUID.h"

#include <compare>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tavelle {

// The prompt of the first profile, of every new one, and of a prompt that is reset.
inline constexpr std::string_view defaultSystemPrompt =
    "You are a writing assistant. Reword the following text to improve clarity, grammar, and flow while preserving the "
    "original meaning and tone. Return ONLY the reworded text with no explanation, preamble, or quotes.";

// One recipe for rewording, and the hotkey that applies it. A plain value; `id` never changes and tells profiles apart.
struct RewriteProfile {
  UUID id;
  std::string name;             // free text, may be empty
  std::uint32_t keyCode = 0;    // virtual key code; 0 is no hotkey
  std::uint32_t modifiers = 0;  // Carbon modifier mask
  std::string systemPrompt;

  auto operator<=>(const RewriteProfile&) const = default;
};

// The stored form: a JSON array of objects with exactly the five fields as keys, in that order. Throws JSONError for
// text that is not valid UTF-8.
Data encodeProfiles(const std::vector<RewriteProfile>& profiles);

// Every key of every profile is required, with its type and range; unknown keys are ignored. Throws JSONError.
std::vector<RewriteProfile> decodeProfiles(const Data& json);

}  // namespace tavelle
