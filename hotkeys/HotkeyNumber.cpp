#include "hotkeys/HotkeyNumber.h"

#include "platform/FatalError.h"

#include <limits>

namespace tavelle {

std::uint32_t takeHotkeyNumber(std::uint32_t& next) {
  if (next == std::numeric_limits<std::uint32_t>::max()) fatalError("the hotkey numbers are used up");
  return next++;
}

}  // namespace tavelle
