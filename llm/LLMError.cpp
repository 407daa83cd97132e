#include "llm/LLMError.h"

namespace tavelle {

std::string LLMError::errorDescription() const {
  switch (case_) {
    case Case::apiError:
      return "API error (" + std::to_string(statusCode_) + "): " + message_;
    case Case::invalidResponse:
      return "Invalid response from server";
    case Case::parsingFailed:
      return "Failed to parse response";
    case Case::authRequired:
      return "Sign in to Tavelle required";
  }
  return {};
}

}  // namespace tavelle
