#pragma once

#include "platform/Pasteboard.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tavelle::tests {

// What every backend's pasteboard does. A `Backend` is made afresh for each test and has pasteboard(), take(contents),
// by which another program takes it over with these types and bytes, and await(task). A type's name is `textType` where
// another program's bytes of it are read as plain text.
//
//     INSTANTIATE_TYPED_TEST_SUITE_P(InMemory, PasteboardContract, InMemoryBackend);
template <typename Backend>
class PasteboardContract : public testing::Test {
 protected:
  using Types = std::vector<PasteboardType>;
  using Contents = std::vector<std::pair<PasteboardType, Data>>;

  Pasteboard& pasteboard() { return backend_.pasteboard(); }
  void anotherProgramTakes(const Contents& contents) { backend_.take(contents); }

  std::optional<Types> types() { return backend_.await(pasteboard().types()); }
  std::optional<Data> data(const PasteboardType& type) { return backend_.await(pasteboard().dataForType(type)); }
  std::optional<std::string> text() { return backend_.await(pasteboard().stringForType(pasteboardTypeString)); }

  // Every type with its data.
  Contents contents() {
    Contents all;
    for (const auto& type : types().value_or(Types{})) all.emplace_back(type, data(type).value_or("nothing"));
    return all;
  }

 private:
  Backend backend_;
};

TYPED_TEST_SUITE_P(PasteboardContract);

TYPED_TEST_P(PasteboardContract, givesAnotherProgramsTypesInItsOrder) {
  this->anotherProgramTakes({{"text/html", "<b>a</b>"}, {"image/png", "png"}, {"application/rtf", "{\\b a}"}});
  EXPECT_EQ(this->types(), (std::vector<PasteboardType>{"text/html", "image/png", "application/rtf"}));
}

TYPED_TEST_P(PasteboardContract, givesTheBytesExactly) {
  const Data bytes("\0\xFF\n\r one\0", 9);
  this->anotherProgramTakes({{"image/png", bytes}, {"empty", ""}});
  EXPECT_EQ(this->data("image/png"), bytes);
  EXPECT_EQ(this->data("empty"), Data{});
}

TYPED_TEST_P(PasteboardContract, hasNoDataOfATypeThatIsNotThere) {
  this->anotherProgramTakes({{"text/html", "<b>a</b>"}});
  EXPECT_EQ(this->data("image/png"), std::nullopt);
  EXPECT_EQ(this->text(), std::nullopt);
}

TYPED_TEST_P(PasteboardContract, givesAnotherProgramsText) {
  this->anotherProgramTakes({{TypeParam::textType, "straße 😀\n"}});
  EXPECT_EQ(this->text(), "straße 😀\n");
}

TYPED_TEST_P(PasteboardContract, givesNoTextThatIsNotUTF8) {
  for (const char* const bytes : {"\xFF\xFE", "\xC0\x80", "\xED\xA0\x80", "ok\xE2\x82"}) {
    this->anotherProgramTakes({{TypeParam::textType, bytes}});
    EXPECT_EQ(this->text(), std::nullopt) << bytes;
    EXPECT_EQ(this->data(TypeParam::textType), bytes) << "the bytes are there all the same";
  }
}

TYPED_TEST_P(PasteboardContract, givesWhatIsThereNow) {
  this->anotherProgramTakes({{TypeParam::textType, "first"}});
  EXPECT_EQ(this->text(), "first");
  this->anotherProgramTakes({{TypeParam::textType, "second"}});
  EXPECT_EQ(this->text(), "second");
}

TYPED_TEST_P(PasteboardContract, hasNothingOnItOnceCleared) {
  this->anotherProgramTakes({{TypeParam::textType, "gone"}, {"text/html", "gone"}});
  this->pasteboard().clearContents();
  EXPECT_EQ(this->types(), std::vector<PasteboardType>{});
  EXPECT_EQ(this->text(), std::nullopt);
  EXPECT_EQ(this->data("text/html"), std::nullopt);
}

TYPED_TEST_P(PasteboardContract, keepsTypesInTheOrderInWhichTheyWereSet) {
  this->pasteboard().clearContents();
  for (const char* const type : {"b", "c", "a"}) EXPECT_TRUE(this->pasteboard().setData(type, type));
  EXPECT_EQ(this->types(), (std::vector<PasteboardType>{"b", "c", "a"}));
}

TYPED_TEST_P(PasteboardContract, replacesTheDataOfATypeThatIsThere) {
  this->pasteboard().clearContents();
  EXPECT_TRUE(this->pasteboard().setData("first", "a"));
  EXPECT_TRUE(this->pasteboard().setData("other", "b"));
  EXPECT_TRUE(this->pasteboard().setData("second", "a"));
  const std::vector<std::pair<PasteboardType, Data>> expected{{"a", "second"}, {"b", "other"}};
  EXPECT_EQ(this->contents(), expected);
}

TYPED_TEST_P(PasteboardContract, readsBackTheTextThatWasSet) {
  for (const auto& text : {std::string{"straße 😀\n"}, std::string{}, std::string("one\0two\0", 8)}) {
    this->pasteboard().clearContents();
    EXPECT_TRUE(this->pasteboard().setString(text, pasteboardTypeString));
    EXPECT_EQ(this->text(), text);
    EXPECT_EQ(this->data(pasteboardTypeString), text);
  }
}

TYPED_TEST_P(PasteboardContract, replacesTheTextThatIsThere) {
  this->pasteboard().clearContents();
  EXPECT_TRUE(this->pasteboard().setString("first", pasteboardTypeString));
  const auto before = this->types();
  EXPECT_TRUE(this->pasteboard().setString("second", pasteboardTypeString));
  EXPECT_EQ(this->text(), "second");
  EXPECT_EQ(this->types(), before);
}

TYPED_TEST_P(PasteboardContract, holdsASnapshotOfAnotherProgramsContents) {
  const std::vector<std::pair<PasteboardType, Data>> rich{
      {"text/html", "<b>a</b>"}, {TypeParam::textType, "a"}, {"image/png", Data(100'000, '\xFE')}};
  this->anotherProgramTakes(rich);
  const auto saved = this->contents();
  EXPECT_EQ(saved, rich);
  this->pasteboard().clearContents();
  for (const auto& [type, data] : saved) EXPECT_TRUE(this->pasteboard().setData(data, type));
  EXPECT_EQ(this->contents(), rich);
  EXPECT_EQ(this->text(), "a");
}

TYPED_TEST_P(PasteboardContract, refusesWhatComesBeforeItIsTakenOver) {
  EXPECT_FALSE(this->pasteboard().setData("data", "text/html"));
  EXPECT_FALSE(this->pasteboard().setString("text", pasteboardTypeString));
}

TYPED_TEST_P(PasteboardContract, refusesWhatComesAfterAnotherProgramHasTakenItOver) {
  this->pasteboard().clearContents();
  EXPECT_TRUE(this->pasteboard().setString("mine", pasteboardTypeString));
  this->anotherProgramTakes({{TypeParam::textType, "theirs"}});
  EXPECT_FALSE(this->pasteboard().setData("late", "text/html"));
  EXPECT_FALSE(this->pasteboard().setString("late", pasteboardTypeString));
  EXPECT_EQ(this->text(), "theirs");
}

REGISTER_TYPED_TEST_SUITE_P(PasteboardContract, givesAnotherProgramsTypesInItsOrder, givesTheBytesExactly,
                            hasNoDataOfATypeThatIsNotThere, givesAnotherProgramsText, givesNoTextThatIsNotUTF8,
                            givesWhatIsThereNow, hasNothingOnItOnceCleared, keepsTypesInTheOrderInWhichTheyWereSet,
                            replacesTheDataOfATypeThatIsThere, readsBackTheTextThatWasSet, replacesTheTextThatIsThere,
                            holdsASnapshotOfAnotherProgramsContents, refusesWhatComesBeforeItIsTakenOver,
                            refusesWhatComesAfterAnotherProgramHasTakenItOver);

}  // namespace tavelle::tests
