#pragma once

#include "platform/LocalizedError.h"

#include <string>
#include <utility>

namespace tavelle {

// What can go wrong with the account of the hosted service, beyond the transport.
class TavelleAccountError : public LocalizedError {
 public:
  enum class Case { requestFailed, notSignedIn };

  // The service refused: what it said.
  static TavelleAccountError requestFailed(std::string message) {
    return TavelleAccountError{Case::requestFailed, std::move(message)};
  }
  static TavelleAccountError notSignedIn() { return TavelleAccountError{Case::notSignedIn}; }

  Case kind() const { return case_; }
  // Of requestFailed only; empty otherwise.
  const std::string& message() const { return message_; }

  std::string errorDescription() const override;

 private:
  explicit TavelleAccountError(Case kind, std::string message = {}) : case_(kind), message_(std::move(message)) {}

  Case case_;
  std::string message_;
};

}  // namespace tavelle
