#include "settings/RewriteProfile.h"

#include "platform/JSONText.h"
#include "platform/UTF8.h"

#include <limits>
#include <optional>
#include <string>

namespace tavelle {
namespace {

[[noreturn]] void refuse(const char* key) {
  throw JSONError{std::string{"The stored profile has no valid \""} + key + "\"."};
}

const JSON& memberOf(const JSON& object, const char* key) {
  const auto member = object.find(key);
  if (member == object.end()) refuse(key);
  return *member;
}

std::string stringOf(const JSON& object, const char* key) {
  const JSON& member = memberOf(object, key);
  if (!member.is_string()) refuse(key);
  return member.get<std::string>();
}

UUID uuidOf(const JSON& object, const char* key) {
  const auto uuid = UUID::parse(stringOf(object, key));
  if (!uuid) refuse(key);
  return *uuid;
}

// A number that has no fraction is whole however it is written: 15, 15.0 and 1.5e1 are the same.
std::uint32_t unsignedOf(const JSON& object, const char* key) {
  const JSON& member = memberOf(object, key);
  if (!member.is_number()) refuse(key);
  const auto number = member.get<double>();
  if (!(number >= 0 && number <= std::numeric_limits<std::uint32_t>::max())) refuse(key);
  const auto whole = static_cast<std::uint32_t>(number);
  if (static_cast<double>(whole) != number) refuse(key);
  return whole;
}

RewriteProfile profileOf(const JSON& object) {
  if (!object.is_object()) throw JSONError{"A stored profile is not an object."};
  RewriteProfile profile;
  profile.id = uuidOf(object, "id");
  profile.name = stringOf(object, "name");
  profile.keyCode = unsignedOf(object, "keyCode");
  profile.modifiers = unsignedOf(object, "modifiers");
  profile.systemPrompt = stringOf(object, "systemPrompt");
  return profile;
}

void append(Data& json, const char* opening, const std::string& text) {
  if (!isUTF8(text)) throw JSONError{"A profile's text is not valid Unicode."};
  json += opening;
  appendJSONString(json, text);
}

void append(Data& json, const char* opening, std::uint32_t number) {
  json.append(opening).append(std::to_string(number));
}

}  // namespace

// Written without a tree of values in between: it is done at every key stroke in a profile's field.
Data encodeProfiles(const std::vector<RewriteProfile>& profiles) {
  Data json;
  for (const auto& profile : profiles) {
    append(json, json.empty() ? R"([{"id":)" : R"(,{"id":)", profile.id.uuidString());
    append(json, R"(,"name":)", profile.name);
    append(json, R"(,"keyCode":)", profile.keyCode);
    append(json, R"(,"modifiers":)", profile.modifiers);
    append(json, R"(,"systemPrompt":)", profile.systemPrompt);
    json += '}';
  }
  json += json.empty() ? "[]" : "]";
  return json;
}

std::vector<RewriteProfile> decodeProfiles(const Data& json) {
  const JSON array = decodeJSON(json);
  if (!array.is_array()) throw JSONError{"The stored profiles are not a list."};
  std::vector<RewriteProfile> profiles;
  profiles.reserve(array.size());
  for (const auto& object : array) profiles.push_back(profileOf(object));
  return profiles;
}

}  // namespace tavelle
