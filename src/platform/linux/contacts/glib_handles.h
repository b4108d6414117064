#pragma once

#include <glib-object.h>

#include <memory>
#include <string>

namespace zantrio {

struct GObjectUnref {
  void operator()(void* object) const { g_object_unref(object); }
};
struct GErrorFree {
  void operator()(GError* error) const { g_error_free(error); }
};
struct GVariantUnref {
  void operator()(GVariant* variant) const { g_variant_unref(variant); }
};
struct GMainContextUnref {
  void operator()(GMainContext* context) const { g_main_context_unref(context); }
};

// Owns one reference.
template <class Object>
using GObjectPtr = std::unique_ptr<Object, GObjectUnref>;
using GErrorPtr = std::unique_ptr<GError, GErrorFree>;
using GVariantPtr = std::unique_ptr<GVariant, GVariantUnref>;
using GMainContextPtr = std::unique_ptr<GMainContext, GMainContextUnref>;

template <class Object>
GObjectPtr<Object> addReference(Object* object) {
  return GObjectPtr<Object>(static_cast<Object*>(g_object_ref(object)));
}

// Frees the error, which may be null, and returns its message.
inline std::string takeText(GError* error) {
  const GErrorPtr owned(error);
  return owned ? owned->message : "unknown error";
}

}  // namespace zantrio
