// Whether the person trusts the process with other programs, and the codes of the event that opens a URL.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <CoreGraphics/CoreGraphics.h>

CF_ASSUME_NONNULL_BEGIN

CF_EXPORT Boolean AXIsProcessTrusted(void);
CF_EXPORT Boolean AXIsProcessTrustedWithOptions(CFDictionaryRef _Nullable options);

enum { kInternetEventClass = 'GURL', kAEGetURL = 'GURL' };
enum { keyDirectObject = '----' };

CF_ASSUME_NONNULL_END
