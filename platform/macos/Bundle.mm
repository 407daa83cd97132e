#include "platform/macos/Bundle.h"

#include "platform/macos/Numbers.h"
#include "platform/macos/Strings.h"

namespace tavelle {

void MacImage::setTemplate(bool isTemplate) {
  [image_ setTemplate:isTemplate];
}

std::optional<InfoValue> MacBundle::objectForInfoDictionaryKey(const std::string& key) {
  id const value = [NSBundle.mainBundle objectForInfoDictionaryKey:nsString(key)];
  if ([value isKindOfClass:NSString.class]) return utf8(value);
  if (![value isKindOfClass:NSNumber.class]) return std::nullopt;
  if (isBoolean(value)) return static_cast<bool>([value boolValue]);
  return [value doubleValue];
}

std::shared_ptr<Image> MacBundle::imageNamed(const std::string& name) {
  NSImage* const image = [NSImage imageNamed:nsString(name)];
  return image ? std::make_shared<MacImage>(image) : nullptr;
}

}  // namespace tavelle
