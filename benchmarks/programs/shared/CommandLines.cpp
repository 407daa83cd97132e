#include "CommandLines.h"

#include <unistd.h>

#include <array>

namespace tavelle::bench {

bool CommandLines::read(const std::function<void(std::istringstream& line)>& obey) {
  std::array<char, 4096> piece;
  const auto count = ::read(STDIN_FILENO, piece.data(), piece.size());
  if (count <= 0) return false;
  input_.append(piece.data(), static_cast<std::size_t>(count));
  for (auto end = input_.find('\n'); end != std::string::npos; end = input_.find('\n')) {
    std::istringstream line{input_.substr(0, end)};
    input_.erase(0, end + 1);
    obey(line);
  }
  return true;
}

}  // namespace tavelle::bench
