#pragma once

#include <glib-object.h>

#include <memory>

namespace tavelle {

struct GObjectUnref {
  void operator()(gpointer object) const { g_object_unref(object); }
};
struct GFree {
  void operator()(gpointer memory) const { g_free(memory); }
};
struct GErrorFree {
  void operator()(GError* error) const { g_error_free(error); }
};
struct GVariantUnref {
  void operator()(GVariant* value) const { g_variant_unref(value); }
};

// Owners of what GLib hands out.
template <typename T>
using GObjectPtr = std::unique_ptr<T, GObjectUnref>;
template <typename T = char>
using GPtr = std::unique_ptr<T, GFree>;
using GErrorPtr = std::unique_ptr<GError, GErrorFree>;
using GVariantPtr = std::unique_ptr<GVariant, GVariantUnref>;

// Adapts an owner to the out-parameters of C: `call(Out{error})` where the function takes a GError**.
template <typename Owner>
class Out {
 public:
  explicit Out(Owner& owner) : owner_(owner) {}
  ~Out() { owner_.reset(raw_); }
  Out(const Out&) = delete;
  Out& operator=(const Out&) = delete;
  operator typename Owner::pointer *() { return &raw_; }  // NOLINT(google-explicit-constructor): that is what it is for

 private:
  Owner& owner_;
  typename Owner::pointer raw_ = nullptr;
};

}  // namespace tavelle
