#pragma once

#include "platform/Keychain.h"
#include "platform/LocalizedError.h"

#include <optional>
#include <string>

namespace tavelle {

// The service name of every item: the application's bundle identifier.
inline constexpr const char* keychainService = "app.tavelle.Tavelle";

class KeychainError : public LocalizedError {
 public:
  // The platform's status, as the failed call returned it.
  static KeychainError saveFailed(OSStatus status) { return KeychainError{status}; }

  OSStatus status() const { return status_; }
  std::string errorDescription() const override;

 private:
  explicit KeychainError(OSStatus status) : status_(status) {}
  OSStatus status_;
};

// Keeps the application's secrets in the person's keychain, one generic-password item per account name. No state beyond
// the keychain it is given, which must outlive it; callable from any thread.
class KeychainHelper {
 public:
  explicit KeychainHelper(Keychain& keychain) : keychain_(&keychain) {}

  // Stores `value` (UTF-8) under account `key`, in place of any earlier item. Throws KeychainError: the earlier item is
  // gone then where the keychain had to delete it first.
  void save(const std::string& key, const std::string& value) const;

  // The stored value; none where there is no item, where the keychain does not answer and where the bytes are not
  // UTF-8.
  std::optional<std::string> load(const std::string& key) const;

  // Named `remove` because `delete` is a keyword. It never fails visibly.
  void remove(const std::string& key) const;

 private:
  Keychain* keychain_;
};

}  // namespace tavelle
