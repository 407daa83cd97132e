#pragma once

#include <filesystem>
#include <string_view>

namespace tavelle {

// Where a program is that comes with this one: in the same folder.
std::filesystem::path programBeside(std::string_view name);

}  // namespace tavelle
