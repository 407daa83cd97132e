#pragma once

#include "platform/macos/renderer/Widget.h"

namespace tavelle::appkit {

// The tabs are items of the window's toolbar, as in the settings of other applications.
std::unique_ptr<Widget> makeTabView(NSWindow* window, Send send);

}  // namespace tavelle::appkit
