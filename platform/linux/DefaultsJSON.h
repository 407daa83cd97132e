#pragma once

#include "platform/UserDefaults.h"

#include <nlohmann/json.hpp>

#include <optional>
#include <string>

namespace tavelle {

// A value of the defaults as it stands in the settings file, and back. Data keep every byte either way.
nlohmann::ordered_json jsonFromDefaults(DefaultsValue value);

// No value for what stands for none: null, and whole numbers that are too large.
std::optional<DefaultsValue> defaultsFromJSON(const nlohmann::ordered_json& json);

// Whether `json` stands for exactly this value, its kind included.
bool standsFor(const nlohmann::ordered_json& json, const DefaultsValue& value);

// What the settings file holds: indented for people, and a line break at the end. Its cost is felt at every change, so
// long texts are written faster than the JSON library does.
std::string settingsText(const nlohmann::ordered_json& values);

// The object that `text` is the JSON text of; no value for anything else.
std::optional<nlohmann::ordered_json> parseSettings(const std::string& text);

}  // namespace tavelle
