// Generic passwords of the keychain.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

CF_ASSUME_NONNULL_BEGIN

enum {
  errSecSuccess = 0,
  errSecIO = -36,
  errSecNotAvailable = -25291,
  errSecDuplicateItem = -25299,
  errSecItemNotFound = -25300,
  errSecInteractionNotAllowed = -25308
};

CF_EXPORT const CFStringRef kSecClass;
CF_EXPORT const CFStringRef kSecClassGenericPassword;
CF_EXPORT const CFStringRef kSecAttrService;
CF_EXPORT const CFStringRef kSecAttrAccount;
CF_EXPORT const CFStringRef kSecAttrAccessible;
CF_EXPORT const CFStringRef kSecAttrAccessibleWhenUnlocked;
CF_EXPORT const CFStringRef kSecValueData;
CF_EXPORT const CFStringRef kSecReturnData;
CF_EXPORT const CFStringRef kSecMatchLimit;
CF_EXPORT const CFStringRef kSecMatchLimitOne;

CF_EXPORT OSStatus SecItemAdd(CFDictionaryRef attributes, CFTypeRef _Nullable* _Nullable CF_RETURNS_RETAINED result);
CF_EXPORT OSStatus SecItemCopyMatching(CFDictionaryRef query,
                                       CFTypeRef _Nullable* _Nullable CF_RETURNS_RETAINED result);
CF_EXPORT OSStatus SecItemDelete(CFDictionaryRef query);

CF_ASSUME_NONNULL_END
