// Quartz event services: key strokes that a program makes.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

CF_ASSUME_NONNULL_BEGIN

typedef struct CF_BRIDGED_TYPE(id) __CGEvent* CGEventRef;
typedef struct CF_BRIDGED_TYPE(id) __CGEventSource* CGEventSourceRef;
typedef uint16_t CGKeyCode;

typedef enum CGEventSourceStateID : int32_t { kCGEventSourceStateHIDSystemState = 1 } CGEventSourceStateID;
typedef enum CGEventTapLocation : uint32_t { kCGHIDEventTap = 0 } CGEventTapLocation;
typedef CF_OPTIONS(uint64_t, CGEventFlags) { kCGEventFlagMaskCommand = 0x00100000 };

CF_EXPORT CGEventSourceRef _Nullable CGEventSourceCreate(CGEventSourceStateID state) CF_RETURNS_RETAINED;
CF_EXPORT CGEventRef _Nullable CGEventCreateKeyboardEvent(CGEventSourceRef _Nullable source, CGKeyCode key,
                                                          bool isDown) CF_RETURNS_RETAINED;
CF_EXPORT void CGEventSetFlags(CGEventRef _Nullable event, CGEventFlags flags);
CF_EXPORT void CGEventPost(CGEventTapLocation tap, CGEventRef _Nullable event);

CF_ASSUME_NONNULL_END
