#pragma once

#include <string>

namespace tavelle {

// What of an absolute URL (RFC 3986) says who is spoken to; empty where it is none. Callable from any thread.

// The host alone, an IPv6 address in its brackets.
std::string hostOf(const char* url);

// Whether both have the same scheme, host and port (RFC 6454, 5).
bool isSameOrigin(const char* one, const char* other);

// This machine itself: "localhost" and the names under it (RFC 6761), 127.0.0.0/8 and ::1.
bool isOnThisMachine(const char* url);

}  // namespace tavelle
