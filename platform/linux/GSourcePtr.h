#pragma once

#include <glib.h>

#include <functional>
#include <memory>

namespace tavelle {

// Takes the source out of its main context.
struct GSourceDestroy {
  void operator()(GSource* source) const {
    g_source_destroy(source);
    g_source_unref(source);
  }
};
using GSourcePtr = std::unique_ptr<GSource, GSourceDestroy>;

// A source of the default main context that calls `dispatch` when its ready time comes (g_source_set_ready_time) and
// whenever `fd`, where there is one, can be read, or is in the `condition` named. The source does not own the
// descriptor. `dispatch` may drop the source.
GSourcePtr makeSource(const char* name, std::function<void()> dispatch, int fd = -1, GIOCondition condition = G_IO_IN);

}  // namespace tavelle
