#include "llm/JSON.h"

#include <gtest/gtest.h>

#include <bit>
#include <charconv>
#include <cmath>
#include <limits>
#include <random>
#include <string>

namespace tavelle::tests {
namespace {

using namespace std::string_literals;

std::string shortest(double number) {
  char digits[32];
  return {digits, std::to_chars(digits, digits + sizeof digits, number).ptr};
}

TEST(EncodeJSON, writesNumbersInTheirShortestForm) {
  for (int hundredths = 0; hundredths <= 200; ++hundredths) {
    const double temperature = hundredths / 100.0;
    EXPECT_EQ(encodeJSON({temperature}), "[" + shortest(temperature) + "]");
  }
  EXPECT_EQ(encodeJSON({0.1 + 0.2}), "[0.30000000000000004]");
}

TEST(EncodeJSON, findsTheShortestFormWhereItIsHardToFind) {
  std::mt19937_64 random{1};
  for (int i = 0; i < 100'000; ++i) {
    const double number = std::bit_cast<double>(random());
    if (!std::isfinite(number)) continue;
    const auto text = encodeJSON({number});
    ASSERT_EQ(decodeJSON(text)[0].get<double>(), number) << text;
    ASSERT_LE(text.size(), shortest(number).size() + 2) << text;
  }
}

TEST(EncodeJSON, writesTheSameAsTheLibraryWhereThereAreNoNumbers) {
  const JSON value = {{"b", {"x", nullptr, true, JSON::object(), JSON::array()}}, {"a \"quoted\" key", {{"n", -5}}}};
  EXPECT_EQ(encodeJSON(value), value.dump());
}

TEST(EncodeJSON, writesWholeNumbersWithoutAFraction) {
  EXPECT_EQ(encodeJSON({4096.0, -1.0, 0.0, 1e15}), "[4096,-1,0,1000000000000000]");
}

TEST(EncodeJSON, refusesWhatJSONCannotHold) {
  EXPECT_THROW(encodeJSON({std::numeric_limits<double>::infinity()}), JSONError);
  EXPECT_THROW(encodeJSON({std::numeric_limits<double>::quiet_NaN()}), JSONError);
  EXPECT_THROW(encodeJSON({"\xFF"}), JSONError);
}

TEST(EncodeJSON, keepsEveryCharacterOfAText) {
  const std::string text = "quotes \" \\ / \b\f\n\r\t\0\x01 é 😀 \u2028"s;
  EXPECT_EQ(decodeJSON(encodeJSON({text}))[0].get<std::string>(), text);
}

TEST(DecodeJSON, wantsAnObjectOrAnArrayAtTheTop) {
  EXPECT_EQ(decodeJSON("{}"), JSON::object());
  EXPECT_EQ(decodeJSON(" [1] "), JSON::array({1}));
  for (const char* text :
       {"", "5", "\"text\"", "null", "true", "{", "[1,]", "{} {}", "<html>", "{'a':1}", "[\"\xFF\"]"}) {
    try {
      decodeJSON(text);
      ADD_FAILURE() << "read: " << text;
    } catch (const JSONError& error) {
      EXPECT_EQ(error.errorDescription(), "The data couldn’t be read because it isn’t in the correct format.");
    }
  }
}

TEST(DecodeJSON, refusesANestingThatIsMeantToHarm) {
  const auto nested = [](std::size_t depth) { return std::string(depth, '[') + std::string(depth, ']'); };
  EXPECT_NO_THROW(decodeJSON(nested(512)));
  EXPECT_THROW(decodeJSON(nested(1'000'000)), JSONError);
}

TEST(DecodeJSON, readsEveryNumberThatJSONHas) {
  const auto numbers = decodeJSON("[0, -1, 18446744073709551615, 123456789012345678901234567890, 2.5e-3]");
  EXPECT_EQ(numbers.at(1), -1);
  EXPECT_EQ(numbers.at(2).get<std::uint64_t>(), 18446744073709551615u);
  EXPECT_EQ(numbers.at(3).get<double>(), 123456789012345678901234567890.0);
  EXPECT_EQ(numbers.at(4).get<double>(), 0.0025);
  EXPECT_THROW(decodeJSON("[123456789012345678901234567890, \"5]"), JSONError);
}

TEST(DecodeJSON, doesNotEndAtANUL) {
  for (const auto& text : {"[1]\0"s, "[1]\0, 2]"s, "[18446744073709551616]\0"s, "[18446744073709551616]\0, 2]"s}) {
    EXPECT_THROW(decodeJSON(text), JSONError) << text;
  }
}

TEST(DecodeJSON, readsEscapedCharactersAndRefusesHalfOnes) {
  EXPECT_EQ(decodeJSON(R"(["\u0000\ud83d\ude00\/"])")[0].get<std::string>(), "\0😀/"s);
  EXPECT_THROW(decodeJSON(R"(["\ud83d"])"), JSONError);
  EXPECT_THROW(decodeJSON("[\"\n\"]"), JSONError);
}

}  // namespace
}  // namespace tavelle::tests
