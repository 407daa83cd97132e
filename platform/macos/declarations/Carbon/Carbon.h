// The Carbon Event Manager's hotkeys.
#pragma once

#include <ApplicationServices/ApplicationServices.h>

CF_ASSUME_NONNULL_BEGIN

typedef struct OpaqueEventRef* EventRef;
typedef struct OpaqueEventHandlerRef* EventHandlerRef;
typedef struct OpaqueEventHandlerCallRef* EventHandlerCallRef;
typedef struct OpaqueEventTargetRef* EventTargetRef;
typedef struct OpaqueEventHotKeyRef* EventHotKeyRef;
typedef OSType EventParamName;
typedef OSType EventParamType;
typedef OSStatus (*EventHandlerProcPtr)(EventHandlerCallRef _Null_unspecified next, EventRef _Null_unspecified event,
                                        void* _Null_unspecified userData);
typedef EventHandlerProcPtr EventHandlerUPP;

struct EventTypeSpec {
  OSType eventClass;
  UInt32 eventKind;
};
typedef struct EventTypeSpec EventTypeSpec;

struct EventHotKeyID {
  OSType signature;
  UInt32 id;
};
typedef struct EventHotKeyID EventHotKeyID;

enum { kEventClassKeyboard = 'keyb' };
enum { kEventHotKeyPressed = 5 };
enum { kEventParamDirectObject = '----' };
enum { typeEventHotKeyID = 'hkid' };
enum { eventNotHandledErr = -9874, eventHotKeyExistsErr = -9878, eventParameterNotFoundErr = -9870 };
enum { cmdKey = 1 << 8, shiftKey = 1 << 9, optionKey = 1 << 11, controlKey = 1 << 12 };
enum { kVK_ANSI_C = 0x08, kVK_ANSI_V = 0x09 };

CF_EXPORT EventTargetRef _Null_unspecified GetApplicationEventTarget(void);
CF_EXPORT OSStatus InstallEventHandler(EventTargetRef _Null_unspecified target,
                                       EventHandlerUPP _Null_unspecified handler, ItemCount count,
                                       const EventTypeSpec* _Null_unspecified types, void* _Nullable userData,
                                       EventHandlerRef _Null_unspecified* _Nullable out);
CF_EXPORT OSStatus RegisterEventHotKey(UInt32 keyCode, UInt32 modifiers, EventHotKeyID id,
                                       EventTargetRef _Null_unspecified target, OptionBits options,
                                       EventHotKeyRef _Null_unspecified* _Null_unspecified out);
CF_EXPORT OSStatus UnregisterEventHotKey(EventHotKeyRef _Null_unspecified hotKey);
CF_EXPORT OSStatus GetEventParameter(EventRef _Null_unspecified event, EventParamName name, EventParamType type,
                                     EventParamType* _Nullable actualType, ByteCount size,
                                     ByteCount* _Nullable actualSize, void* _Nullable out);

CF_ASSUME_NONNULL_END
