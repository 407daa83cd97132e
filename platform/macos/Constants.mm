// The numbers that the boundary's headers give for the system's are the system's own.

#import <AppKit/AppKit.h>
#import <Carbon/Carbon.h>
#import <Security/Security.h>
#import <UserNotifications/UserNotifications.h>

#include "platform/Platform.h"

namespace tavelle {
namespace {

template <typename Ours, typename System>
constexpr bool isSame(Ours ours, System system) {
  return static_cast<System>(ours) == system;
}

static_assert(isSame(tavelle::noErr, ::noErr));
static_assert(isSame(tavelle::paramErr, ::paramErr));
static_assert(isSame(tavelle::eventNotHandledErr, ::eventNotHandledErr));
static_assert(isSame(tavelle::eventHotKeyExistsErr, ::eventHotKeyExistsErr));
static_assert(isSame(tavelle::eventParameterNotFoundErr, ::eventParameterNotFoundErr));
static_assert(isSame(tavelle::errSecSuccess, ::errSecSuccess));
static_assert(isSame(tavelle::errSecNotAvailable, ::errSecNotAvailable));
static_assert(isSame(tavelle::errSecDuplicateItem, ::errSecDuplicateItem));
static_assert(isSame(tavelle::errSecItemNotFound, ::errSecItemNotFound));
static_assert(isSame(tavelle::errSecInteractionNotAllowed, ::errSecInteractionNotAllowed));
static_assert(isSame(tavelle::errSecIO, ::errSecIO));

static_assert(isSame(tavelle::kEventClassKeyboard, ::kEventClassKeyboard));
static_assert(isSame(tavelle::kEventHotKeyPressed, ::kEventHotKeyPressed));
static_assert(isSame(tavelle::kEventParamDirectObject, ::kEventParamDirectObject));
static_assert(isSame(tavelle::typeEventHotKeyID, ::typeEventHotKeyID));
static_assert(isSame(tavelle::cmdKey, ::cmdKey));
static_assert(isSame(tavelle::shiftKey, ::shiftKey));
static_assert(isSame(tavelle::optionKey, ::optionKey));
static_assert(isSame(tavelle::controlKey, ::controlKey));

static_assert(isSame(EventSourceStateID::hidSystemState, kCGEventSourceStateHIDSystemState));
static_assert(isSame(EventTapLocation::hidEventTap, kCGHIDEventTap));
static_assert(isSame(eventFlagMaskCommand, kCGEventFlagMaskCommand));
static_assert(isSame(tavelle::kVK_ANSI_C, ::kVK_ANSI_C));
static_assert(isSame(tavelle::kVK_ANSI_V, ::kVK_ANSI_V));

static_assert(isSame(tavelle::kInternetEventClass, ::kInternetEventClass));
static_assert(isSame(tavelle::kAEGetURL, ::kAEGetURL));
static_assert(isSame(tavelle::keyDirectObject, ::keyDirectObject));

static_assert(isSame(AuthorizationOptions::badge, UNAuthorizationOptionBadge));
static_assert(isSame(AuthorizationOptions::sound, UNAuthorizationOptionSound));
static_assert(isSame(AuthorizationOptions::alert, UNAuthorizationOptionAlert));

static_assert(isSame(WindowStyleMask::titled, NSWindowStyleMaskTitled));
static_assert(isSame(WindowStyleMask::closable, NSWindowStyleMaskClosable));
static_assert(isSame(BackingStoreType::buffered, NSBackingStoreBuffered));

using Code = URLError::Code;
static_assert(isSame(Code::unknown, NSURLErrorUnknown));
static_assert(isSame(Code::cancelled, NSURLErrorCancelled));
static_assert(isSame(Code::badURL, NSURLErrorBadURL));
static_assert(isSame(Code::timedOut, NSURLErrorTimedOut));
static_assert(isSame(Code::unsupportedURL, NSURLErrorUnsupportedURL));
static_assert(isSame(Code::cannotFindHost, NSURLErrorCannotFindHost));
static_assert(isSame(Code::cannotConnectToHost, NSURLErrorCannotConnectToHost));
static_assert(isSame(Code::networkConnectionLost, NSURLErrorNetworkConnectionLost));
static_assert(isSame(Code::httpTooManyRedirects, NSURLErrorHTTPTooManyRedirects));
static_assert(isSame(Code::notConnectedToInternet, NSURLErrorNotConnectedToInternet));
static_assert(isSame(Code::badServerResponse, NSURLErrorBadServerResponse));
static_assert(isSame(Code::cannotDecodeContentData, NSURLErrorCannotDecodeContentData));
static_assert(isSame(Code::secureConnectionFailed, NSURLErrorSecureConnectionFailed));
static_assert(isSame(Code::serverCertificateUntrusted, NSURLErrorServerCertificateUntrusted));

}  // namespace
}  // namespace tavelle
