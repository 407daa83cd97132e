#include "account/TavelleAccountError.h"

namespace tavelle {

std::string TavelleAccountError::errorDescription() const {
  switch (case_) {
    case Case::requestFailed:
      return "Request failed: " + message_;
    case Case::notSignedIn:
      return "Not signed in to Tavelle";
  }
  return {};
}

}  // namespace tavelle
