#include "platform/linux/Programs.h"

#include <system_error>

namespace tavelle {

std::filesystem::path programBeside(std::string_view name) {
  std::error_code error;
  return std::filesystem::read_symlink("/proc/self/exe", error).parent_path() / name;
}

}  // namespace tavelle
