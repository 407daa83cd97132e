#pragma once

#include <cstdint>

namespace tavelle {

// The result code of the platform's C interfaces. 0 is success; the values are the platform's own on every system.
using OSStatus = std::int32_t;

inline constexpr OSStatus noErr = 0;

// Carbon events (CarbonEvents.h, CarbonEventsCore.h).
inline constexpr OSStatus eventNotHandledErr = -9874;
inline constexpr OSStatus eventHotKeyExistsErr = -9878;
inline constexpr OSStatus eventParameterNotFoundErr = -9870;
inline constexpr OSStatus paramErr = -50;

// Security (SecBase.h).
inline constexpr OSStatus errSecSuccess = 0;
inline constexpr OSStatus errSecNotAvailable = -25291;
inline constexpr OSStatus errSecDuplicateItem = -25299;
inline constexpr OSStatus errSecItemNotFound = -25300;
inline constexpr OSStatus errSecInteractionNotAllowed = -25308;
inline constexpr OSStatus errSecIO = -36;

}  // namespace tavelle
