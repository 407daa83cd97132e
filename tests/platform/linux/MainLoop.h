#pragma once

#include "platform/linux/GSourcePtr.h"

#include <functional>

namespace tavelle::tests {

// Serves the main loop until `isTrue`. False where that takes unreasonably long.
inline bool waitUntil(const std::function<bool()>& isTrue) {
  constexpr gint64 limit = 30 * G_USEC_PER_SEC;
  bool isOver = false;
  const auto end = makeSource("limit of a wait", [&] { isOver = true; });
  g_source_set_ready_time(end.get(), g_get_monotonic_time() + limit);
  while (!isTrue() && !isOver) g_main_context_iteration(nullptr, true);
  return isTrue();
}

// Serves what the main loop has ready now.
inline void serveReady() {
  while (g_main_context_iteration(nullptr, false)) {
  }
}

}  // namespace tavelle::tests
