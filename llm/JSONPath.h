#pragma once

#include "llm/JSON.h"

#include <string>

namespace tavelle {

// Steps down an answer. Each throws LLMError::parsingFailed where `object` is no object, has no such member, or the
// member is of another type.
const JSON& objectAt(const JSON& object, const char* key);
const std::string& stringAt(const JSON& object, const char* key);

// The first element of an array of objects: every element must be one, and there must be one.
const JSON& firstObjectAt(const JSON& object, const char* key);

}  // namespace tavelle
