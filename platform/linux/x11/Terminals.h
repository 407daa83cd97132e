#pragma once

#include <string_view>

namespace tavelle::x11 {

// How a window wants the editing keys.
enum class EditingKeys {
  control,       // Control+C and Control+V: nearly every application
  controlShift,  // a terminal, where Control+C would interrupt the program that runs in it
  none,          // a terminal that has no key for them, and in which each combination means something to the program
};

// By either part of a window's WM_CLASS, in any letter case.
EditingKeys editingKeysOf(std::string_view instanceName, std::string_view className);

}  // namespace tavelle::x11
