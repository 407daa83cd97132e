#pragma once

#include "platform/LocalizedError.h"

#include <string>
#include <utility>

namespace tavelle {

// What can go wrong in a call to a model, beyond the transport: the descriptions are shown to the person as they stand.
class LLMError : public LocalizedError {
 public:
  enum class Case { apiError, invalidResponse, parsingFailed, authRequired };

  // A status other than 200, with the answer's body as it came, however long.
  static LLMError apiError(int statusCode, std::string message) {
    return LLMError{Case::apiError, statusCode, std::move(message)};
  }
  // The response was not of HTTP.
  static LLMError invalidResponse() { return LLMError{Case::invalidResponse}; }
  // A 200 answer without the value where the wire format has it.
  static LLMError parsingFailed() { return LLMError{Case::parsingFailed}; }
  // The hosted service wants the person to sign in.
  static LLMError authRequired() { return LLMError{Case::authRequired}; }

  Case kind() const { return case_; }
  // Of apiError only; 0 and empty otherwise.
  int statusCode() const { return statusCode_; }
  const std::string& message() const { return message_; }

  std::string errorDescription() const override;

  bool operator==(const LLMError& other) const {
    return case_ == other.case_ && statusCode_ == other.statusCode_ && message_ == other.message_;
  }

 private:
  explicit LLMError(Case kind, int statusCode = 0, std::string message = {})
      : case_(kind), statusCode_(statusCode), message_(std::move(message)) {}

  Case case_;
  int statusCode_;
  std::string message_;
};

}  // namespace tavelle
