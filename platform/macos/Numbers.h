#pragma once

#import <Foundation/Foundation.h>

namespace tavelle {

// What kind of value an NSNumber was made of.
inline bool isBoolean(NSNumber* number) {
  return CFGetTypeID((__bridge CFTypeRef)number) == CFBooleanGetTypeID();
}

inline bool isFraction(NSNumber* number) {
  return CFNumberIsFloatType((__bridge CFNumberRef)number);
}

}  // namespace tavelle
