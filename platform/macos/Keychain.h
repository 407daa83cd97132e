#pragma once

#include "platform/Keychain.h"

namespace tavelle {

class MacKeychain : public Keychain {
 public:
  OSStatus secItemAdd(const KeychainItemQuery& item, const Data& value, KeychainAccessible accessible) override;
  OSStatus secItemCopyMatching(const KeychainItemQuery& query, std::optional<Data>& value) override;
  OSStatus secItemDelete(const KeychainItemQuery& query) override;
};

}  // namespace tavelle
