#include "platform/linux/GSourcePtr.h"

#include <new>
#include <utility>

namespace tavelle {
namespace {

struct FunctionSource {
  GSource base;
  std::function<void()> function;

  static std::function<void()>& of(GSource* source) { return reinterpret_cast<FunctionSource*>(source)->function; }

  static gboolean dispatch(GSource* source, GSourceFunc, gpointer) {
    of(source)();
    return G_SOURCE_CONTINUE;
  }
  static void finalize(GSource* source) { std::destroy_at(&of(source)); }
};

GSourceFuncs functions = {nullptr, nullptr, FunctionSource::dispatch, FunctionSource::finalize, nullptr, nullptr};

}  // namespace

GSourcePtr makeSource(const char* name, std::function<void()> dispatch, int fd, GIOCondition condition) {
  GSourcePtr source{g_source_new(&functions, sizeof(FunctionSource))};
  new (&FunctionSource::of(source.get())) std::function<void()>{std::move(dispatch)};
  g_source_set_static_name(source.get(), name);
  if (fd >= 0) g_source_add_unix_fd(source.get(), fd, condition);
  g_source_attach(source.get(), nullptr);
  return source;
}

}  // namespace tavelle
