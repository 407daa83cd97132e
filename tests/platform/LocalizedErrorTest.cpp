#include "platform/LocalizedError.h"

#include "platform/URLSession.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace tavelle::tests {
namespace {

TEST(LocalizedError, describesItselfInItsOwnWords) {
  const URLError error{URLError::Code::timedOut, "The request timed out."};
  EXPECT_EQ(localizedDescription(error), "The request timed out.");
  EXPECT_STREQ(error.what(), "The request timed out.");
}

TEST(LocalizedError, givesWhatAnyOtherErrorSays) {
  EXPECT_EQ(localizedDescription(std::runtime_error{"no luck"}), "no luck");
}

}  // namespace
}  // namespace tavelle::tests
