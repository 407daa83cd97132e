#include "platform/fake/Keychain.h"

namespace tavelle {

OSStatus FakeKeychain::secItemAdd(const KeychainItemQuery& item, const Data& value, KeychainAccessible) {
  if (addStatus != errSecSuccess) return addStatus;
  const bool isNew = items.emplace(std::pair{item.service, item.account}, value).second;
  return isNew ? errSecSuccess : errSecDuplicateItem;
}

OSStatus FakeKeychain::secItemCopyMatching(const KeychainItemQuery& query, std::optional<Data>& value) {
  value.reset();
  if (copyStatus != errSecSuccess) return copyStatus;
  const auto found = items.find({query.service, query.account});
  if (found == items.end()) return errSecItemNotFound;
  value = found->second;
  return errSecSuccess;
}

OSStatus FakeKeychain::secItemDelete(const KeychainItemQuery& query) {
  if (deleteStatus != errSecSuccess) return deleteStatus;
  return items.erase({query.service, query.account}) ? errSecSuccess : errSecItemNotFound;
}

}  // namespace tavelle
