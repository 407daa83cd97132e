#include "platform/macos/Keychain.h"

#include "platform/macos/CFDictionary.h"

#include <Security/Security.h>

namespace tavelle {
namespace {

// The entries of a query, and what they refer to.
class Attributes {
 public:
  explicit Attributes(const KeychainItemQuery& item)
      : service_(cfString(item.service)),
        account_(cfString(item.account)),
        entries_{{kSecClass, kSecClassGenericPassword},
                 {kSecAttrService, service_.get()},
                 {kSecAttrAccount, account_.get()}} {}

  Attributes& with(CFStringRef key, CFTypeRef value) {
    entries_.emplace_back(key, value);
    return *this;
  }

  // Null where a name is not UTF-8.
  CFRef<CFDictionaryRef> dictionary() const { return service_ && account_ ? cfDictionary(entries_) : nullptr; }

 private:
  CFRef<CFStringRef> service_;
  CFRef<CFStringRef> account_;
  std::vector<std::pair<CFStringRef, CFTypeRef>> entries_;
};

CFRef<CFDataRef> cfData(const Data& bytes) {
  return CFRef<CFDataRef>{CFDataCreate(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(bytes.data()),
                                       static_cast<CFIndex>(bytes.size()))};
}

}  // namespace

// There is but one KeychainAccessible.
OSStatus MacKeychain::secItemAdd(const KeychainItemQuery& item, const Data& value, KeychainAccessible) {
  const auto data = cfData(value);
  const auto attributes = Attributes{item}
                              .with(kSecValueData, data.get())
                              .with(kSecAttrAccessible, kSecAttrAccessibleWhenUnlocked)
                              .dictionary();
  return attributes ? SecItemAdd(attributes.get(), nullptr) : paramErr;
}

OSStatus MacKeychain::secItemCopyMatching(const KeychainItemQuery& query, std::optional<Data>& value) {
  value.reset();
  const auto attributes =
      Attributes{query}.with(kSecReturnData, kCFBooleanTrue).with(kSecMatchLimit, kSecMatchLimitOne).dictionary();
  if (!attributes) return paramErr;
  CFTypeRef found = nullptr;
  const auto status = SecItemCopyMatching(attributes.get(), &found);
  const CFRef<CFTypeRef> owner{found};
  if (found && CFGetTypeID(found) == CFDataGetTypeID()) {
    const auto data = static_cast<CFDataRef>(found);
    value.emplace(reinterpret_cast<const char*>(CFDataGetBytePtr(data)),
                  static_cast<std::size_t>(CFDataGetLength(data)));
  }
  return status;
}

OSStatus MacKeychain::secItemDelete(const KeychainItemQuery& query) {
  const auto attributes = Attributes{query}.dictionary();
  return attributes ? SecItemDelete(attributes.get()) : paramErr;
}

}  // namespace tavelle
