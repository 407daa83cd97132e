#include "tests/platform/macos/doubles/SystemDouble.h"

#include <Security/Security.h>

#include <cstdio>
#include <cstring>

namespace tavelle::tests {
namespace {

SystemDouble current;

// What the references that are handed out point to.
char applicationTarget;
char installedHandler;
char someEvent;
UInt32 pressed;
std::deque<EventHotKeyID> registered;

template <typename Reference>
Reference referTo(auto& object) {
  return reinterpret_cast<Reference>(&object);
}

template <typename... Values>
void record(const char* format, Values... values) {
  char line[512];
  std::snprintf(line, sizeof line, format, values...);
  current.calls.emplace_back(line);
}

std::string code(FourCharCode value) {
  return {static_cast<char>(value >> 24), static_cast<char>(value >> 16), static_cast<char>(value >> 8),
          static_cast<char>(value)};
}

const char* name(EventTargetRef target) {
  return target == referTo<EventTargetRef>(applicationTarget) ? "application target" : "another target";
}

template <typename Value>
Value next(std::deque<Value>& answers, Value otherwise) {
  if (answers.empty()) return otherwise;
  const auto answer = answers.front();
  answers.pop_front();
  return answer;
}

std::pair<std::string, std::string> itemOf(CFDictionaryRef query) {
  return {bytesOf(valueOf(query, kSecAttrService)), bytesOf(valueOf(query, kSecAttrAccount))};
}

}  // namespace

SystemDouble& system() {
  return current;
}

void resetSystem() {
  current = {};
  registered.clear();
}

OSStatus SystemDouble::press(UInt32 hotKey) {
  pressed = hotKey;
  return handler(nullptr, referTo<EventRef>(someEvent), handlersUserData);
}

}  // namespace tavelle::tests

using namespace tavelle::tests;

EventTargetRef GetApplicationEventTarget() {
  return referTo<EventTargetRef>(applicationTarget);
}

OSStatus InstallEventHandler(EventTargetRef target, EventHandlerUPP handler, ItemCount count,
                             const EventTypeSpec* types, void* userData, EventHandlerRef* out) {
  std::string list;
  for (ItemCount at = 0; at < count; ++at) {
    list += code(types[at].eventClass) + ' ' + std::to_string(types[at].eventKind);
  }
  record("InstallEventHandler(%s, %s, %lu, %s, %s)", name(target), handler ? "a handler" : "no handler", count,
         list.c_str(), userData ? "user data" : "no user data");
  current.handler = handler;
  current.handlersUserData = userData;
  if (current.statusOfInstalling == noErr) *out = referTo<EventHandlerRef>(installedHandler);
  return current.statusOfInstalling;
}

OSStatus RegisterEventHotKey(UInt32 keyCode, UInt32 modifiers, EventHotKeyID id, EventTargetRef target,
                             OptionBits options, EventHotKeyRef* out) {
  record("RegisterEventHotKey(%u, 0x%x, %s %u, %s, %u)", keyCode, modifiers, code(id.signature).c_str(), id.id,
         name(target), options);
  const auto status = next(current.statusesOfRegistering, OSStatus{noErr});
  if (status == noErr) *out = referTo<EventHotKeyRef>(registered.emplace_back(id));
  return status;
}

OSStatus UnregisterEventHotKey(EventHotKeyRef hotKey) {
  record("UnregisterEventHotKey(%u)", reinterpret_cast<const EventHotKeyID*>(hotKey)->id);
  return noErr;
}

OSStatus GetEventParameter(EventRef event, EventParamName parameter, EventParamType type, EventParamType* actualType,
                           ByteCount size, ByteCount* actualSize, void* out) {
  record("GetEventParameter(%s, %s, %s, %s, %lu, %s)", event == referTo<EventRef>(someEvent) ? "the event" : "another",
         code(parameter).c_str(), code(type).c_str(), actualType ? "actual type" : "null", size,
         actualSize ? "actual size" : "null");
  if (current.statusOfReading != noErr) return current.statusOfReading;
  const EventHotKeyID id{0x54564C45, pressed};  // TVLE
  std::memcpy(out, &id, sizeof id);
  return noErr;
}

CGEventSourceRef CGEventSourceCreate(CGEventSourceStateID state) {
  record("CGEventSourceCreate(%d)", state);
  if (!current.givesSources) return nullptr;
  return static_cast<CGEventSourceRef>(const_cast<void*>(makeNamed("source")));
}

CGEventRef CGEventCreateKeyboardEvent(CGEventSourceRef source, CGKeyCode key, bool isDown) {
  record("CGEventCreateKeyboardEvent(%s, %u, %s)", describe(source).c_str(), key, isDown ? "true" : "false");
  if (!current.givesEvents) return nullptr;
  const auto event = makeNamed("key " + std::to_string(key) + (isDown ? " down" : " up"));
  return static_cast<CGEventRef>(const_cast<void*>(event));
}

void CGEventSetFlags(CGEventRef event, CGEventFlags flags) {
  record("CGEventSetFlags(%s, 0x%lx)", describe(event).c_str(), static_cast<unsigned long>(flags));
}

void CGEventPost(CGEventTapLocation tap, CGEventRef event) {
  record("CGEventPost(%u, %s)", tap, describe(event).c_str());
}

Boolean AXIsProcessTrusted() {
  record("AXIsProcessTrusted()");
  return next(current.trust, true);
}

Boolean AXIsProcessTrustedWithOptions(CFDictionaryRef options) {
  record("AXIsProcessTrustedWithOptions(%s)", describe(options).c_str());
  return next(current.trust, true);
}

OSStatus SecItemAdd(CFDictionaryRef attributes, CFTypeRef* result) {
  record("SecItemAdd(%s, %s)", describe(attributes).c_str(), result ? "result" : "null");
  const bool isNew = !current.passwords.contains(itemOf(attributes));
  const auto status = next(current.statusesOfAdding, OSStatus{isNew ? errSecSuccess : errSecDuplicateItem});
  if (status == errSecSuccess) current.passwords[itemOf(attributes)] = bytesOf(valueOf(attributes, kSecValueData));
  return status;
}

OSStatus SecItemCopyMatching(CFDictionaryRef query, CFTypeRef* result) {
  record("SecItemCopyMatching(%s, %s)", describe(query).c_str(), result ? "result" : "null");
  const auto found = current.passwords.find(itemOf(query));
  if (found == current.passwords.end()) return errSecItemNotFound;
  *result = makeData(found->second);
  return errSecSuccess;
}

OSStatus SecItemDelete(CFDictionaryRef query) {
  record("SecItemDelete(%s)", describe(query).c_str());
  return current.passwords.erase(itemOf(query)) > 0 ? errSecSuccess : errSecItemNotFound;
}
