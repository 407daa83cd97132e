// What the system's <MacTypes.h> gives the declarations, and how another compiler reads their annotations.
#pragma once

#define _Nonnull
#define _Nullable
#define _Null_unspecified

typedef unsigned char Boolean;
typedef unsigned char UInt8;
typedef unsigned int UInt32;
typedef int SInt32;
typedef SInt32 OSStatus;
typedef UInt32 FourCharCode;
typedef FourCharCode OSType;
typedef UInt32 OptionBits;
typedef unsigned long ByteCount;
typedef unsigned long ItemCount;

enum { noErr = 0 };
