#pragma once

#include <cstdint>

namespace tavelle {

// Takes the number that is next, and sets `next` to the one after it. Ends the process where there is none after it.
std::uint32_t takeHotkeyNumber(std::uint32_t& next);

}  // namespace tavelle
