#pragma once

#include "llm/JSON.h"
#include "platform/URLSession.h"

#include <string>

namespace tavelle {

// A POST of `body` to `url`; `headers` come beside the content type. Throws JSONError. A string that is no URL ends the
// process.
URLRequest jsonRequest(const std::string& url, const JSON& body, URLHeaders headers = {});

// What an answer says that is a refusal: the whole of its body, or "Unknown error" where that is no text.
std::string messageIn(const Data& body);

}  // namespace tavelle
