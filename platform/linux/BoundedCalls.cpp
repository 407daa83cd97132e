#include "platform/linux/BoundedCalls.h"

namespace tavelle {
namespace {

// How long a call may take to notice that it was cancelled.
constexpr std::chrono::milliseconds grace{250};

GSourcePtr attachTimeout(GMainContext* context, std::chrono::milliseconds delay, GSourceFunc function, gpointer data) {
  GSourcePtr timeout{g_timeout_source_new(static_cast<guint>(delay.count()))};
  g_source_set_callback(timeout.get(), function, data, nullptr);
  g_source_attach(timeout.get(), context);
  return timeout;
}

gboolean cancel(gpointer cancellable) {
  g_cancellable_cancel(static_cast<GCancellable*>(cancellable));
  return G_SOURCE_REMOVE;
}

gboolean raise(gpointer flag) {
  *static_cast<bool*>(flag) = true;
  return G_SOURCE_REMOVE;
}

}  // namespace

BoundedCalls::BoundedCalls(GMainContext* context, std::chrono::milliseconds limit)
    : context_(context),
      cancellable_(g_cancellable_new()),
      timeout_(attachTimeout(context, limit, cancel, cancellable_.get())),
      lastMoment_(attachTimeout(context, limit + grace, raise, &isLastMoment_)) {
  g_main_context_push_thread_default(context_);
  while (g_main_context_iteration(context_, false)) continue;  // what has happened since the last time
}

BoundedCalls::~BoundedCalls() {
  g_main_context_pop_thread_default(context_);
}

void BoundedCalls::waitUntil(const std::function<bool()>& isMet, std::chrono::milliseconds limit) {
  bool isOver = false;
  const auto timeout = attachTimeout(context_, limit, raise, &isOver);
  while (!isMet() && !isOver && !isTimeUp()) g_main_context_iteration(context_, true);
}

GObjectPtr<GAsyncResult> BoundedCalls::finish(std::unique_ptr<Call> call) {
  while (!call->result && !isLastMoment_) g_main_context_iteration(context_, true);
  if (call->result) return std::move(call->result);
  call->isGivenUp = true;
  static_cast<void>(call.release());  // the callback's, should it come after all
  return nullptr;
}

void BoundedCalls::onReady(GObject*, GAsyncResult* result, gpointer data) {
  std::unique_ptr<Call> call{static_cast<Call*>(data)};
  if (call->isGivenUp) return;
  call->result.reset(G_ASYNC_RESULT(g_object_ref(result)));
  static_cast<void>(call.release());  // the one who waits has it
}

}  // namespace tavelle
