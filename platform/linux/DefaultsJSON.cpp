#include "platform/linux/DefaultsJSON.h"

#include "platform/JSONText.h"
#include "platform/StrictJSON.h"
#include "platform/UTF8.h"
#include "platform/linux/GObjectPtr.h"

#include <glib.h>

#include <limits>
#include <utility>

namespace tavelle {
namespace {

using JSON = nlohmann::ordered_json;

constexpr const char* textKey = "$data";
constexpr const char* base64Key = "$base64";

// Deeper nesting than any settings have; writing the values out is recursive.
constexpr int deepestNesting = 64;

const std::string* onlyMember(const JSON& json, const char* key) {
  if (!json.is_object() || json.size() != 1) return nullptr;
  const auto member = json.find(key);
  return member == json.end() ? nullptr : member->get_ptr<const std::string*>();
}

// The list or object that `bytes` are, if they read back as exactly these bytes. Large ones are not worth the time:
// nobody edits them by hand.
std::optional<JSON> asStructure(const Data& bytes) {
  constexpr std::size_t largest = 256UL * 1024;
  if (bytes.size() > largest || !(bytes.starts_with('[') || bytes.starts_with('{'))) return std::nullopt;
  auto json = parseStrictJSON<JSON>(bytes, deepestNesting - 1);  // it stands in the file's own object
  if (json.is_discarded() || onlyMember(json, textKey) || onlyMember(json, base64Key)) return std::nullopt;
  if (json.dump() != bytes) return std::nullopt;
  return json;
}

Data decodeBase64(const std::string& text) {
  gsize size = 0;
  const GPtr<guchar> bytes{g_base64_decode(text.c_str(), &size)};
  return {reinterpret_cast<const char*>(bytes.get()), size};
}

JSON jsonFromData(Data bytes) {
  if (auto structure = asStructure(bytes)) return std::move(*structure);
  JSON json = JSON::object();
  if (isUTF8(bytes)) {
    json.emplace(textKey, std::move(bytes));
  } else {
    const GPtr<> base64{g_base64_encode(reinterpret_cast<const guchar*>(bytes.data()), bytes.size())};
    json.emplace(base64Key, base64.get());
  }
  return json;
}

// Text in the settings file is always UTF-8.
std::string validUTF8(const std::string& text) {
  if (isUTF8(text)) return text;
  const GPtr<> valid{g_utf8_make_valid(text.data(), static_cast<gssize>(text.size()))};
  return valid.get();
}

void appendLineBreak(std::string& out, std::size_t depth) {
  out.append("\n").append(2 * depth, ' ');
}

void append(std::string& out, const JSON& json, std::size_t depth) {
  if (const auto* const text = json.get_ptr<const std::string*>()) return appendJSONString(out, *text);
  if (!json.is_structured() || json.empty()) {
    out += json.dump();
    return;
  }
  out += json.is_object() ? '{' : '[';
  for (auto member = json.begin(); member != json.end(); ++member) {
    if (member != json.begin()) out += ',';
    appendLineBreak(out, depth + 1);
    if (json.is_object()) {
      appendJSONString(out, member.key());
      out += ": ";
    }
    append(out, *member, depth + 1);
  }
  appendLineBreak(out, depth);
  out += json.is_object() ? '}' : ']';
}

}  // namespace

JSON jsonFromDefaults(DefaultsValue value) {
  if (auto* data = std::get_if<DataValue>(&value)) return jsonFromData(std::move(data->bytes));
  if (const auto* text = std::get_if<std::string>(&value)) return validUTF8(*text);
  if (const auto* truth = std::get_if<bool>(&value)) return *truth;
  if (const auto* whole = std::get_if<std::int64_t>(&value)) return *whole;
  return std::get<double>(value);
}

std::optional<DefaultsValue> defaultsFromJSON(const JSON& json) {
  switch (json.type()) {
    case JSON::value_t::string:
      return json.get<std::string>();
    case JSON::value_t::boolean:
      return json.get<bool>();
    case JSON::value_t::number_float:
      return json.get<double>();
    case JSON::value_t::number_integer:
      return json.get<std::int64_t>();
    case JSON::value_t::number_unsigned: {
      const auto whole = json.get<std::uint64_t>();
      if (whole > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) return std::nullopt;
      return static_cast<std::int64_t>(whole);
    }
    case JSON::value_t::array:
    case JSON::value_t::object:
      if (const auto* text = onlyMember(json, textKey)) return DataValue{*text};
      if (const auto* text = onlyMember(json, base64Key)) return DataValue{decodeBase64(*text)};
      return DataValue{json.dump()};
    default:
      return std::nullopt;
  }
}

bool standsFor(const JSON& json, const DefaultsValue& value) {
  const auto* const data = std::get_if<DataValue>(&value);
  if (const auto* const text = data ? onlyMember(json, textKey) : nullptr) return *text == data->bytes;
  return defaultsFromJSON(json) == value;
}

std::optional<JSON> parseSettings(const std::string& text) {
  auto json = parseStrictJSON<JSON>(text, deepestNesting);
  if (!json.is_object()) return std::nullopt;
  return json;
}

std::string settingsText(const JSON& values) {
  std::string text;
  append(text, values, 0);
  text += '\n';
  return text;
}

}  // namespace tavelle
