#include "platform/UTF8.h"

#include <gtest/gtest.h>

namespace tavelle::tests {
namespace {

TEST(UTF8, isToldFromOtherBytes) {
  EXPECT_TRUE(isUTF8(""));
  EXPECT_TRUE(isUTF8(std::string_view{"a\0é😀", 8}));
  for (const char* bytes : {"\xFF", "\xC3", "\xC0\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80", "a\x80"})
    EXPECT_FALSE(isUTF8(bytes));
}

}  // namespace
}  // namespace tavelle::tests
