#pragma once

#include "platform/Keychain.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <thread>

namespace tavelle::tests {

// What every backend's keychain does. A `Backend` is made afresh for each test, with an empty keychain, and has
// keychain().
//
//     INSTANTIATE_TYPED_TEST_SUITE_P(InMemory, KeychainContract, InMemoryBackend);
template <typename Backend>
class KeychainContract : public testing::Test {
 protected:
  OSStatus add(const KeychainItemQuery& query, const Data& value) {
    return backend_.keychain().secItemAdd(query, value, KeychainAccessible::whenUnlocked);
  }

  OSStatus replace(const KeychainItemQuery& query, const Data& value) {
    return backend_.keychain().replaceItem(query, value, KeychainAccessible::whenUnlocked);
  }

  OSStatus remove(const KeychainItemQuery& query) { return backend_.keychain().secItemDelete(query); }

  // The status; `read` has the value.
  OSStatus copy(const KeychainItemQuery& query) { return backend_.keychain().secItemCopyMatching(query, read); }

  // What is read back after `value` was added.
  std::optional<Data> afterAdding(const Data& value) {
    EXPECT_EQ(add(item, value), errSecSuccess);
    EXPECT_EQ(copy(item), errSecSuccess);
    EXPECT_EQ(remove(item), errSecSuccess);
    return read;
  }

  const KeychainItemQuery item{"app.tavelle.Test", "apiKey_openai"};
  std::optional<Data> read;

 private:
  Backend backend_;
};

TYPED_TEST_SUITE_P(KeychainContract);

TYPED_TEST_P(KeychainContract, findsNothingThatWasNeverAdded) {
  this->read = "left over";
  EXPECT_EQ(this->copy(this->item), errSecItemNotFound);
  EXPECT_EQ(this->read, std::nullopt);
}

TYPED_TEST_P(KeychainContract, readsBackWhatWasAdded) {
  for (const Data& value : {Data{"sk-key"}, Data{"schlüssel 🔑"}, Data{"\n two\nlines "}}) {
    EXPECT_EQ(this->afterAdding(value), value);
  }
}

TYPED_TEST_P(KeychainContract, keepsAnEmptyValue) {
  EXPECT_EQ(this->afterAdding(""), Data{});
}

TYPED_TEST_P(KeychainContract, keepsAnyBytes) {
  const Data bytes("a\0b\xff\xfe\0", 6);
  EXPECT_EQ(this->afterAdding(bytes), bytes);
}

TYPED_TEST_P(KeychainContract, keepsALongValue) {
  const Data value(100'000, 'x');
  EXPECT_EQ(this->afterAdding(value), value);
}

TYPED_TEST_P(KeychainContract, refusesASecondItemOfTheSameName) {
  EXPECT_EQ(this->add(this->item, "first"), errSecSuccess);
  EXPECT_EQ(this->add(this->item, "second"), errSecDuplicateItem);
  EXPECT_EQ(this->copy(this->item), errSecSuccess);
  EXPECT_EQ(this->read, "first");
}

TYPED_TEST_P(KeychainContract, keepsAccountsAndServicesApart) {
  const KeychainItemQuery otherAccount{this->item.service, "apiKey_gemini"};
  const KeychainItemQuery otherService{"app.tavelle.Other", this->item.account};
  EXPECT_EQ(this->add(this->item, "1"), errSecSuccess);
  EXPECT_EQ(this->add(otherAccount, "2"), errSecSuccess);
  EXPECT_EQ(this->add(otherService, "3"), errSecSuccess);
  EXPECT_EQ(this->remove(otherAccount), errSecSuccess);
  EXPECT_EQ(this->copy(otherAccount), errSecItemNotFound);
  EXPECT_EQ(this->copy(otherService), errSecSuccess);
  EXPECT_EQ(this->read, "3");
  EXPECT_EQ(this->copy(this->item), errSecSuccess);
  EXPECT_EQ(this->read, "1");
}

TYPED_TEST_P(KeychainContract, deletesAnItem) {
  EXPECT_EQ(this->add(this->item, "value"), errSecSuccess);
  EXPECT_EQ(this->remove(this->item), errSecSuccess);
  EXPECT_EQ(this->copy(this->item), errSecItemNotFound);
}

TYPED_TEST_P(KeychainContract, saysWhenThereIsNothingToDelete) {
  EXPECT_EQ(this->remove(this->item), errSecItemNotFound);
}

TYPED_TEST_P(KeychainContract, takesAnItemAgainAfterItWasDeleted) {
  EXPECT_EQ(this->afterAdding("old"), "old");
  EXPECT_EQ(this->afterAdding("new"), "new");
}

TYPED_TEST_P(KeychainContract, replacesAnItem) {
  EXPECT_EQ(this->add(this->item, "old"), errSecSuccess);
  EXPECT_EQ(this->replace(this->item, "new"), errSecSuccess);
  EXPECT_EQ(this->copy(this->item), errSecSuccess);
  EXPECT_EQ(this->read, "new");
  EXPECT_EQ(this->remove(this->item), errSecSuccess);
  EXPECT_EQ(this->copy(this->item), errSecItemNotFound);
}

TYPED_TEST_P(KeychainContract, addsWhereThereIsNothingToReplace) {
  EXPECT_EQ(this->replace(this->item, "value"), errSecSuccess);
  EXPECT_EQ(this->copy(this->item), errSecSuccess);
  EXPECT_EQ(this->read, "value");
}

TYPED_TEST_P(KeychainContract, answersOnAnyThread) {
  EXPECT_EQ(this->add(this->item, "value"), errSecSuccess);
  OSStatus status = errSecIO;
  std::thread{[&] { status = this->copy(this->item); }}.join();
  EXPECT_EQ(status, errSecSuccess);
  EXPECT_EQ(this->read, "value");
}

REGISTER_TYPED_TEST_SUITE_P(KeychainContract, findsNothingThatWasNeverAdded, readsBackWhatWasAdded, keepsAnEmptyValue,
                            keepsAnyBytes, keepsALongValue, refusesASecondItemOfTheSameName,
                            keepsAccountsAndServicesApart, deletesAnItem, saysWhenThereIsNothingToDelete,
                            takesAnItemAgainAfterItWasDeleted, replacesAnItem, addsWhereThereIsNothingToReplace,
                            answersOnAnyThread);

}  // namespace tavelle::tests
