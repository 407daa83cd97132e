#pragma once

#include "platform/Keychain.h"

#include <map>
#include <string>
#include <utility>

namespace tavelle {

// A keychain in memory. Set a status to make the calls of that kind fail with it.
class FakeKeychain : public Keychain {
 public:
  OSStatus secItemAdd(const KeychainItemQuery& item, const Data& value, KeychainAccessible accessible) override;
  OSStatus secItemCopyMatching(const KeychainItemQuery& query, std::optional<Data>& value) override;
  OSStatus secItemDelete(const KeychainItemQuery& query) override;

  // By service and account.
  std::map<std::pair<std::string, std::string>, Data> items;
  OSStatus addStatus = errSecSuccess;
  OSStatus copyStatus = errSecSuccess;
  OSStatus deleteStatus = errSecSuccess;
};

}  // namespace tavelle
