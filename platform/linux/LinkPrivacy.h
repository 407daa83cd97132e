#pragma once

#include <span>

namespace tavelle {

// Keeps sign-in links, which carry the person's token, from being seen or changed on their way through this process. To
// be called first, before there are threads. `arguments` are main()'s.
//
// What is on the command line and is no option moves to memory of our own, and is wiped from the list of processes;
// `arguments` then point to the copies. GIO's own record of what comes over the bus (G_DBUS_DEBUG) is turned off, and
// links are read by no file system's module, of which some write them anew.
void keepLinksPrivate(std::span<char*> arguments);

}  // namespace tavelle
