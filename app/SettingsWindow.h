#pragma once

#include "platform/Window.h"

#include <memory>

namespace tavelle {

class Platform;

// The settings window, not shown yet. It is made once and kept: closing hides it, with everything as it stands.
std::unique_ptr<Window> makeSettingsWindow(Platform& platform);

}  // namespace tavelle
