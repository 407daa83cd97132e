#include "view/wire/LineBuffer.h"

#include "view/wire/WireError.h"

#include <algorithm>

namespace tavelle::view {

void LineBuffer::append(std::string_view bytes) {
  bytes_.erase(0, start_);
  searched_ -= start_;
  start_ = 0;
  bytes_.append(bytes);
}

std::optional<std::string> LineBuffer::take() {
  const auto end = std::min(bytes_.find('\n', searched_), bytes_.size());
  if (end - start_ > limit_) throw WireError{"a line is too long"};
  searched_ = end;
  if (end == bytes_.size()) return std::nullopt;
  auto line = bytes_.substr(start_, end - start_);
  start_ = searched_ = end + 1;
  return line;
}

}  // namespace tavelle::view
