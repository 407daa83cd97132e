#pragma once

#include "platform/linux/GObjectPtr.h"
#include "platform/linux/GSourcePtr.h"

#include <gio/gio.h>

#include <chrono>
#include <functional>
#include <memory>
#include <utility>

namespace tavelle {

struct GMainContextUnref {
  void operator()(GMainContext* context) const { g_main_context_unref(context); }
};
using GMainContextPtr = std::unique_ptr<GMainContext, GMainContextUnref>;

// Waits for asynchronous calls of GIO as if they were synchronous, all of them together no longer than `limit`: those
// that are still under way then are cancelled, and every later one fails at once. While this object lives, `context` is
// its thread's own, and nothing but what was started on it runs: the program's main loop stands still.
class BoundedCalls {
 public:
  BoundedCalls(GMainContext* context, std::chrono::milliseconds limit);
  ~BoundedCalls();
  BoundedCalls(const BoundedCalls&) = delete;
  BoundedCalls& operator=(const BoundedCalls&) = delete;

  // `start(cancellable, callback, data)` starts the call; returns its result, for the call's own finish function. Null
  // where the call does not even notice that it is cancelled: libsecret has calls that can lose their callback.
  template <typename Start>
  GObjectPtr<GAsyncResult> wait(const Start& start) {
    auto call = std::make_unique<Call>();
    start(cancellable_.get(), &BoundedCalls::onReady, call.get());
    return finish(std::move(call));
  }

  // Waits for what is noticed on the context, no longer than `limit`.
  void waitUntil(const std::function<bool()>& isMet, std::chrono::milliseconds limit);

  bool isTimeUp() const { return g_cancellable_is_cancelled(cancellable_.get()); }

 private:
  struct Call {
    GObjectPtr<GAsyncResult> result;
    bool isGivenUp = false;
  };

  GObjectPtr<GAsyncResult> finish(std::unique_ptr<Call> call);
  static void onReady(GObject*, GAsyncResult* result, gpointer call);

  GMainContext* context_;
  GObjectPtr<GCancellable> cancellable_;
  GSourcePtr timeout_;
  GSourcePtr lastMoment_;
  bool isLastMoment_ = false;
};

}  // namespace tavelle
