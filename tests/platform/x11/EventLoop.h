#pragma once

#include "platform/linux/x11/Connection.h"

#include <functional>

namespace tavelle::x11::tests {

// Serves the main loop until `isTrue`. False where that takes unreasonably long.
bool waitUntil(const std::function<bool()>& isTrue);

// Lets the server's clock go on by so many milliseconds: two things that are told apart by their time stamps have to
// have different ones.
void passTime(Connection& connection, xcb_timestamp_t milliseconds = 2);

// Waits until the server has carried out all that this connection has asked it for. The main loop stands still.
void roundTrip(Connection& connection);

// Serves the main loop until everything that the server has sent to this connection so far is dealt with.
void settle(Connection& connection);

}  // namespace tavelle::x11::tests
