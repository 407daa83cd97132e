#include "tests/platform/macos/doubles/SystemDouble.h"

#include <Security/Security.h>

#include <variant>

// As opaque as the system's: a dictionary is only ever made with these.
struct CFDictionaryKeyCallBacks {};
struct CFDictionaryValueCallBacks {};

namespace tavelle::tests {
namespace {

struct Text {
  std::string utf8;
};
struct Bytes {
  std::string bytes;
};
struct Name {
  std::string name;
};
using Entries = std::vector<std::pair<CFTypeRef, CFTypeRef>>;

// Behind every reference.
struct Object {
  std::variant<Name, Text, Bytes, Entries> content;
  bool isConstant = false;
  int owners = 1;
};

int living = 0;

const Object& objectOf(CFTypeRef reference) {
  return *static_cast<const Object*>(reference);
}

template <typename Reference, typename Content>
Reference make(Content content) {
  ++living;
  return reinterpret_cast<Reference>(new Object{std::move(content)});
}

template <typename Reference>
Reference constant(const char* name) {
  static std::deque<Object> constants;
  constants.push_back({.content = Name{name}, .isConstant = true});
  return reinterpret_cast<Reference>(&constants.back());
}

void retain(CFTypeRef reference) {
  auto& object = *static_cast<Object*>(const_cast<void*>(reference));
  if (!object.isConstant) ++object.owners;
}

constexpr CFTypeID dataTypeID = 20;
constexpr CFTypeID otherTypeID = 1;

}  // namespace

int liveObjects() {
  return living;
}

std::string describe(CFTypeRef reference) {
  if (!reference) return "null";
  const auto& content = objectOf(reference).content;
  if (const auto* name = std::get_if<Name>(&content)) return name->name;
  if (const auto* text = std::get_if<Text>(&content)) return '"' + text->utf8 + '"';
  if (const auto* bytes = std::get_if<Bytes>(&content)) return '<' + bytes->bytes + '>';
  std::string words;
  for (const auto& [key, value] : std::get<Entries>(content)) {
    words += (words.empty() ? "" : ", ") + describe(key) + ": " + describe(value);
  }
  return '{' + words + '}';
}

CFTypeRef valueOf(CFDictionaryRef dictionary, CFTypeRef key) {
  for (const auto& [entryKey, value] : std::get<Entries>(objectOf(dictionary).content)) {
    if (entryKey == key) return value;
  }
  return nullptr;
}

std::string bytesOf(CFTypeRef reference) {
  if (!reference) return {};
  const auto& content = objectOf(reference).content;
  if (const auto* text = std::get_if<Text>(&content)) return text->utf8;
  return std::get<Bytes>(content).bytes;
}

CFTypeRef makeData(std::string bytes) {
  return make<CFTypeRef>(Bytes{std::move(bytes)});
}

CFTypeRef makeNamed(std::string name) {
  return make<CFTypeRef>(Name{std::move(name)});
}

}  // namespace tavelle::tests

using namespace tavelle::tests;

const CFAllocatorRef kCFAllocatorDefault = nullptr;
const CFBooleanRef kCFBooleanTrue = constant<CFBooleanRef>("true");
const CFBooleanRef kCFBooleanFalse = constant<CFBooleanRef>("false");
const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks;
const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks;

const CFStringRef kSecClass = constant<CFStringRef>("kSecClass");
const CFStringRef kSecClassGenericPassword = constant<CFStringRef>("kSecClassGenericPassword");
const CFStringRef kSecAttrService = constant<CFStringRef>("kSecAttrService");
const CFStringRef kSecAttrAccount = constant<CFStringRef>("kSecAttrAccount");
const CFStringRef kSecAttrAccessible = constant<CFStringRef>("kSecAttrAccessible");
const CFStringRef kSecAttrAccessibleWhenUnlocked = constant<CFStringRef>("kSecAttrAccessibleWhenUnlocked");
const CFStringRef kSecValueData = constant<CFStringRef>("kSecValueData");
const CFStringRef kSecReturnData = constant<CFStringRef>("kSecReturnData");
const CFStringRef kSecMatchLimit = constant<CFStringRef>("kSecMatchLimit");
const CFStringRef kSecMatchLimitOne = constant<CFStringRef>("kSecMatchLimitOne");

void CFRelease(CFTypeRef reference) {
  auto* const object = static_cast<Object*>(const_cast<void*>(reference));
  if (object->isConstant || --object->owners > 0) return;
  if (const auto* entries = std::get_if<Entries>(&object->content)) {
    for (const auto& [key, value] : *entries) {
      CFRelease(key);
      CFRelease(value);
    }
  }
  --living;
  delete object;
}

CFTypeID CFGetTypeID(CFTypeRef reference) {
  return std::holds_alternative<Bytes>(objectOf(reference).content) ? dataTypeID : otherTypeID;
}

CFTypeID CFDataGetTypeID() {
  return dataTypeID;
}

CFDataRef CFDataCreate(CFAllocatorRef, const UInt8* bytes, CFIndex length) {
  return make<CFDataRef>(Bytes{{reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(length)}});
}

CFIndex CFDataGetLength(CFDataRef data) {
  return static_cast<CFIndex>(bytesOf(data).size());
}

const UInt8* CFDataGetBytePtr(CFDataRef data) {
  return reinterpret_cast<const UInt8*>(std::get<Bytes>(objectOf(data).content).bytes.data());
}

// Null for what is not UTF-8: 0xFF, which never is, stands for all of it.
CFStringRef CFStringCreateWithBytes(CFAllocatorRef, const UInt8* bytes, CFIndex length, CFStringEncoding encoding,
                                    Boolean isExternal) {
  std::string text{reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(length)};
  if (encoding != kCFStringEncodingUTF8 || isExternal || text.find('\xFF') != text.npos) return nullptr;
  return make<CFStringRef>(Text{std::move(text)});
}

CFDictionaryRef CFDictionaryCreate(CFAllocatorRef, const void** keys, const void** values, CFIndex count,
                                   const CFDictionaryKeyCallBacks* keyCallBacks,
                                   const CFDictionaryValueCallBacks* valueCallBacks) {
  const bool retains =
      keyCallBacks == &kCFTypeDictionaryKeyCallBacks && valueCallBacks == &kCFTypeDictionaryValueCallBacks;
  if (!retains) return nullptr;
  Entries entries;
  for (CFIndex at = 0; at < count; ++at) {
    retain(keys[at]);
    retain(values[at]);
    entries.emplace_back(keys[at], values[at]);
  }
  return make<CFDictionaryRef>(std::move(entries));
}
