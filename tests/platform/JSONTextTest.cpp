#include "platform/JSONText.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>

namespace tavelle {
namespace {

std::string written(const std::string& text) {
  std::string json;
  appendJSONString(json, text);
  return json;
}

TEST(JSONText, appendsToWhatIsThere) {
  std::string json = "[";
  appendJSONString(json, "a");
  EXPECT_EQ(json, "[\"a\"");
}

TEST(JSONText, everyCharacterIsWrittenAsTheLibraryWritesIt) {
  for (int code = 0; code < 0x80; ++code) {
    const std::string text{'a', static_cast<char>(code), 'b'};
    EXPECT_EQ(written(text), nlohmann::json(text).dump()) << code;
  }
  for (const std::string text :
       {"", "é", "e\u0301", "\u2028", "👩‍👩‍👧‍👦", "\"\"", "\\", "\\\\\"", "\n"}) {
    EXPECT_EQ(written(text), nlohmann::json(text).dump()) << text;
  }
}

}  // namespace
}  // namespace tavelle
