#include "llm/JSONPath.h"

#include "llm/LLMError.h"

#include <algorithm>

namespace tavelle {
namespace {

const JSON& memberAt(const JSON& object, const char* key, JSON::value_t type) {
  const auto member = object.is_object() ? object.find(key) : object.end();
  if (member == object.end() || member->type() != type) throw LLMError::parsingFailed();
  return *member;
}

}  // namespace

const JSON& objectAt(const JSON& object, const char* key) {
  return memberAt(object, key, JSON::value_t::object);
}

const std::string& stringAt(const JSON& object, const char* key) {
  return memberAt(object, key, JSON::value_t::string).get_ref<const std::string&>();
}

const JSON& firstObjectAt(const JSON& object, const char* key) {
  const JSON& array = memberAt(object, key, JSON::value_t::array);
  const bool holdsObjects =
      std::all_of(array.begin(), array.end(), [](const JSON& element) { return element.is_object(); });
  if (array.empty() || !holdsObjects) throw LLMError::parsingFailed();
  return array.front();
}

}  // namespace tavelle
