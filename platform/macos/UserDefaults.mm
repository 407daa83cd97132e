#include "platform/macos/UserDefaults.h"

#include "platform/macos/Numbers.h"
#include "platform/macos/Strings.h"

namespace tavelle {
namespace {

// Writes a value of each kind by the call for that kind.
struct Writer {
  NSUserDefaults* defaults;
  NSString* key;

  void operator()(bool value) const { [defaults setBool:value forKey:key]; }
  void operator()(std::int64_t value) const { [defaults setInteger:value forKey:key]; }
  void operator()(double value) const { [defaults setDouble:value forKey:key]; }
  void operator()(const std::string& value) const { [defaults setObject:nsString(value) forKey:key]; }
  void operator()(const DataValue& value) const { [defaults setObject:nsData(value.bytes) forKey:key]; }
};

}  // namespace

std::optional<DefaultsValue> MacUserDefaults::objectForKey(const std::string& key) const {
  id const value = [NSUserDefaults.standardUserDefaults objectForKey:nsString(key)];
  if ([value isKindOfClass:NSString.class]) return utf8(value);
  if ([value isKindOfClass:NSData.class]) return DataValue{bytesOf(value)};
  if (![value isKindOfClass:NSNumber.class]) return std::nullopt;
  if (isBoolean(value)) return static_cast<bool>([value boolValue]);
  if (isFraction(value)) return [value doubleValue];
  return static_cast<std::int64_t>([value longLongValue]);
}

void MacUserDefaults::setObject(DefaultsValue value, const std::string& key) {
  std::visit(Writer{NSUserDefaults.standardUserDefaults, nsString(key)}, value);
}

void MacUserDefaults::removeObjectForKey(const std::string& key) {
  [NSUserDefaults.standardUserDefaults removeObjectForKey:nsString(key)];
}

}  // namespace tavelle
