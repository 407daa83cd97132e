#include "platform/LocalizedError.h"

namespace tavelle {

const char* LocalizedError::what() const noexcept {
  try {
    what_ = errorDescription();
    return what_.c_str();
  } catch (...) {
    return "an error without a description";
  }
}

std::string localizedDescription(const std::exception& error) {
  const auto* localized = dynamic_cast<const LocalizedError*>(&error);
  return localized ? localized->errorDescription() : error.what();
}

}  // namespace tavelle
