#pragma once

#include <exception>
#include <string>

namespace tavelle {

// An error whose description a person can read, as the platform's localized-error protocol has it.
class LocalizedError : public std::exception {
 public:
  // What happened, in words for the person. UTF-8, any length, possibly many lines.
  virtual std::string errorDescription() const = 0;

  const char* what() const noexcept override;

 private:
  mutable std::string what_;
};

// The words to show for any error: its own description, or what() where it has none.
std::string localizedDescription(const std::exception& error);

}  // namespace tavelle
