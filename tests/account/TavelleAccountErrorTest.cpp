#include "account/TavelleAccountError.h"

#include <gtest/gtest.h>

namespace tavelle::tests {
namespace {

TEST(TavelleAccountError, describesItself) {
  EXPECT_EQ(TavelleAccountError::requestFailed("bad email").errorDescription(), "Request failed: bad email");
  EXPECT_EQ(TavelleAccountError::notSignedIn().errorDescription(), "Not signed in to Tavelle");
  EXPECT_EQ(localizedDescription(TavelleAccountError::notSignedIn()), "Not signed in to Tavelle");
}

}  // namespace
}  // namespace tavelle::tests
