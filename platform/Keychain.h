#pragma once

#include "platform/Data.h"
#include "platform/OSStatus.h"

#include <optional>
#include <string>

namespace tavelle {

// Which generic-password item (kSecClassGenericPassword) is meant: kSecAttrService and kSecAttrAccount.
struct KeychainItemQuery {
  std::string service;
  std::string account;

  bool operator==(const KeychainItemQuery&) const = default;
};

enum class KeychainAccessible { whenUnlocked };  // kSecAttrAccessibleWhenUnlocked

// The person's keychain (Security; the Secret Service on Linux, with the attributes `service` and `account`).
//
// Callable from any thread. Calls answer within a bounded time: a service that is missing, locked or hung is a status.
// The values never reach a log, a file of ours or another process than the keychain's.
class Keychain {
 public:
  virtual ~Keychain() = default;

  // errSecDuplicateItem where the item exists.
  virtual OSStatus secItemAdd(const KeychainItemQuery& item, const Data& value, KeychainAccessible accessible) = 0;

  // The one matching item's data (kSecReturnData, kSecMatchLimitOne) in `value`; errSecItemNotFound where there is
  // none.
  virtual OSStatus secItemCopyMatching(const KeychainItemQuery& query, std::optional<Data>& value) = 0;

  virtual OSStatus secItemDelete(const KeychainItemQuery& query) = 0;

  // The item has this value, whether there was one or not. What was there is deleted, whatever comes of that, and the
  // item added; a keychain that can change an item does that instead, so that nothing is lost where it fails half way.
  virtual OSStatus replaceItem(const KeychainItemQuery& item, const Data& value, KeychainAccessible accessible) {
    secItemDelete(item);  // "not found" is the usual answer
    return secItemAdd(item, value, accessible);
  }
};

}  // namespace tavelle
