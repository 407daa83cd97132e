#include "llm/KeychainHelper.h"

#include "platform/UTF8.h"

namespace tavelle {
namespace {

KeychainItemQuery itemOf(const std::string& account) {
  return {keychainService, account};
}

}  // namespace

std::string KeychainError::errorDescription() const {
  return "Keychain save failed with status: " + std::to_string(status_);
}

void KeychainHelper::save(const std::string& key, const std::string& value) const {
  if (!isUTF8(value)) return;
  const OSStatus status = keychain_->replaceItem(itemOf(key), value, KeychainAccessible::whenUnlocked);
  if (status != errSecSuccess) throw KeychainError::saveFailed(status);
}

std::optional<std::string> KeychainHelper::load(const std::string& key) const {
  std::optional<Data> value;
  const OSStatus status = keychain_->secItemCopyMatching(itemOf(key), value);
  if (status != errSecSuccess || !value || !isUTF8(*value)) return std::nullopt;
  return value;
}

void KeychainHelper::remove(const std::string& key) const {
  keychain_->secItemDelete(itemOf(key));
}

}  // namespace tavelle
