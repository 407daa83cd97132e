#pragma once

#import <Foundation/Foundation.h>

#include "platform/Data.h"

#include <string>
#include <string_view>

namespace tavelle {

// Nil where `text` is not UTF-8.
inline NSString* nsString(std::string_view text) {
  return [[NSString alloc] initWithBytes:text.data() length:text.size() encoding:NSUTF8StringEncoding];
}

inline NSData* nsData(std::string_view bytes) {
  return [NSData dataWithBytes:bytes.data() length:bytes.size()];
}

inline Data bytesOf(NSData* data) {
  return data.length == 0 ? Data{} : Data{static_cast<const char*>(data.bytes), data.length};
}

// As UTF-8. Half a surrogate pair, which UTF-8 has no bytes for, becomes a question mark.
inline std::string utf8(NSString* text) {
  return bytesOf([text dataUsingEncoding:NSUTF8StringEncoding allowLossyConversion:YES]);
}

}  // namespace tavelle
