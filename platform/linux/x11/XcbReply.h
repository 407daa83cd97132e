#pragma once

#include <cstdlib>
#include <memory>

namespace tavelle::x11 {

struct FreeXcb {
  void operator()(void* memory) const { std::free(memory); }
};

// Owns a reply, an event or an error that XCB allocated. Null where there was none.
template <typename T>
using XcbReply = std::unique_ptr<T, FreeXcb>;

}  // namespace tavelle::x11
