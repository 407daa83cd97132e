#pragma once

#include "platform/Bundle.h"

#include <gtest/gtest.h>

#include <string>

namespace tavelle::tests {

// What every backend's bundle does. A `Backend` is made afresh for each test and has bundle(): of an application whose
// information has "CFBundleName" as "Tavelle", "LSUIElement" as true and "Count" as 2, and that has an image
// "MenuBarIcon".
//
//     INSTANTIATE_TYPED_TEST_SUITE_P(InMemory, BundleContract, InMemoryBackend);
template <typename Backend>
class BundleContract : public testing::Test {
 protected:
  Bundle& bundle() { return backend_.bundle(); }

 private:
  Backend backend_;
};

TYPED_TEST_SUITE_P(BundleContract);

TYPED_TEST_P(BundleContract, handsOverInformationAsItsKind) {
  EXPECT_EQ(this->bundle().objectForInfoDictionaryKey("CFBundleName"), InfoValue{std::string{"Tavelle"}});
  EXPECT_EQ(this->bundle().objectForInfoDictionaryKey("LSUIElement"), InfoValue{true});
  EXPECT_EQ(this->bundle().objectForInfoDictionaryKey("Count"), InfoValue{2.0});
}

TYPED_TEST_P(BundleContract, hasNoInformationThatIsNotThere) {
  for (const char* const key : {"cfbundlename", "Nonsense", ""}) {
    EXPECT_EQ(this->bundle().objectForInfoDictionaryKey(key), std::nullopt) << key;
  }
}

TYPED_TEST_P(BundleContract, hasItsImages) {
  const auto image = this->bundle().imageNamed("MenuBarIcon");
  ASSERT_TRUE(image);
  image->setTemplate(true);
  EXPECT_TRUE(this->bundle().imageNamed("MenuBarIcon")) << "as often as it is asked for";
}

TYPED_TEST_P(BundleContract, hasNoImageThatIsNotThere) {
  for (const char* const name : {"menubaricon", "Nonsense", ""}) {
    EXPECT_EQ(this->bundle().imageNamed(name), nullptr) << name;
  }
}

REGISTER_TYPED_TEST_SUITE_P(BundleContract, handsOverInformationAsItsKind, hasNoInformationThatIsNotThere, hasItsImages,
                            hasNoImageThatIsNotThere);

}  // namespace tavelle::tests
