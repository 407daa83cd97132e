#include "platform/macos/Pasteboard.h"

#import <AppKit/AppKit.h>

#include "platform/macos/Strings.h"

namespace tavelle {
namespace {

NSPasteboardType nsType(const PasteboardType& type) {
  return type == pasteboardTypeString ? NSPasteboardTypeString : nsString(type);
}

}  // namespace

Task<std::optional<std::vector<PasteboardType>>> MacPasteboard::types() {
  NSArray<NSPasteboardType>* const names = NSPasteboard.generalPasteboard.types;
  if (!names) co_return std::nullopt;
  std::vector<PasteboardType> types;
  for (NSPasteboardType name in names) types.push_back(utf8(name));
  co_return types;
}

Task<std::optional<Data>> MacPasteboard::dataForType(PasteboardType type) {
  NSData* const data = [NSPasteboard.generalPasteboard dataForType:nsType(type)];
  if (!data) co_return std::nullopt;
  co_return bytesOf(data);
}

Task<std::optional<std::string>> MacPasteboard::stringForType(PasteboardType type) {
  NSString* const string = [NSPasteboard.generalPasteboard stringForType:nsType(type)];
  if (!string) co_return std::nullopt;
  co_return utf8(string);
}

void MacPasteboard::clearContents() {
  [NSPasteboard.generalPasteboard clearContents];
}

bool MacPasteboard::setData(Data data, const PasteboardType& type) {
  return [NSPasteboard.generalPasteboard setData:nsData(data) forType:nsType(type)];
}

bool MacPasteboard::setString(std::string string, const PasteboardType& type) {
  NSString* const text = nsString(string);
  return text && [NSPasteboard.generalPasteboard setString:text forType:nsType(type)];
}

}  // namespace tavelle
