// The part of Core Foundation that Tavelle uses, and the macros of all these declarations.
#pragma once

#include <MacTypes.h>
#include <os/availability.h>
#include <stdbool.h>
#include <stdint.h>

#define CF_EXPORT extern "C"
#define CF_OPTIONS(type, name) \
  type name;                   \
  enum : type
#define CF_BRIDGED_TYPE(type) __attribute__((objc_bridge(type)))
#define CF_RETURNS_RETAINED __attribute__((cf_returns_retained))
#define CF_ASSUME_NONNULL_BEGIN _Pragma("clang assume_nonnull begin")
#define CF_ASSUME_NONNULL_END _Pragma("clang assume_nonnull end")

#ifdef __OBJC__
@class NSData, NSDictionary, NSNumber, NSString;
#endif

CF_ASSUME_NONNULL_BEGIN

enum { paramErr = -50 };

typedef signed long CFIndex;
typedef unsigned long CFTypeID;

typedef double CGFloat;
typedef struct CGPoint {
  CGFloat x;
  CGFloat y;
} CGPoint;
typedef struct CGSize {
  CGFloat width;
  CGFloat height;
} CGSize;
typedef struct CGRect {
  CGPoint origin;
  CGSize size;
} CGRect;

typedef const CF_BRIDGED_TYPE(id) void* CFTypeRef;
typedef const struct CF_BRIDGED_TYPE(id) __CFAllocator* CFAllocatorRef;
typedef const struct CF_BRIDGED_TYPE(NSNumber) __CFBoolean* CFBooleanRef;
typedef const struct CF_BRIDGED_TYPE(NSData) __CFData* CFDataRef;
typedef const struct CF_BRIDGED_TYPE(NSDictionary) __CFDictionary* CFDictionaryRef;
typedef const struct CF_BRIDGED_TYPE(NSNumber) __CFNumber* CFNumberRef;
typedef const struct CF_BRIDGED_TYPE(NSString) __CFString* CFStringRef;

CF_EXPORT const CFAllocatorRef _Null_unspecified kCFAllocatorDefault;
CF_EXPORT void CFRelease(CFTypeRef object);
CF_EXPORT CFTypeID CFGetTypeID(CFTypeRef object);

CF_EXPORT const CFBooleanRef _Null_unspecified kCFBooleanTrue;
CF_EXPORT const CFBooleanRef _Null_unspecified kCFBooleanFalse;
CF_EXPORT CFTypeID CFBooleanGetTypeID(void);
CF_EXPORT Boolean CFNumberIsFloatType(CFNumberRef number);

CF_EXPORT CFTypeID CFDataGetTypeID(void);
CF_EXPORT CFDataRef _Null_unspecified CFDataCreate(CFAllocatorRef _Nullable allocator,
                                                   const UInt8* _Null_unspecified bytes, CFIndex length);
CF_EXPORT CFIndex CFDataGetLength(CFDataRef data);
CF_EXPORT const UInt8* _Null_unspecified CFDataGetBytePtr(CFDataRef data);

typedef UInt32 CFStringEncoding;
enum : CFStringEncoding { kCFStringEncodingUTF8 = 0x08000100 };
CF_EXPORT CFStringRef _Null_unspecified CFStringCreateWithBytes(CFAllocatorRef _Nullable allocator,
                                                                const UInt8* _Null_unspecified bytes, CFIndex length,
                                                                CFStringEncoding encoding,
                                                                Boolean isExternalRepresentation);

// Only ever passed on: what they hold is the system's.
typedef struct CFDictionaryKeyCallBacks CFDictionaryKeyCallBacks;
typedef struct CFDictionaryValueCallBacks CFDictionaryValueCallBacks;
CF_EXPORT const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks;
CF_EXPORT const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks;
CF_EXPORT CFDictionaryRef _Null_unspecified CFDictionaryCreate(
    CFAllocatorRef _Nullable allocator, const void* _Null_unspecified* _Null_unspecified keys,
    const void* _Null_unspecified* _Null_unspecified values, CFIndex count,
    const CFDictionaryKeyCallBacks* _Nullable keyCallBacks, const CFDictionaryValueCallBacks* _Nullable valueCallBacks);

CF_ASSUME_NONNULL_END
