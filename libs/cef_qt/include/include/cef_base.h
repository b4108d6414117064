// Base of all framework objects and handler interfaces.
#ifndef CEF_INCLUDE_CEF_BASE_H_
#define CEF_INCLUDE_CEF_BASE_H_

#include "include/base/cef_ref_counted.h"
#include "include/internal/cef_ptr.h"
#include "include/internal/cef_string.h"
#include "include/internal/cef_types.h"
#include "include/internal/cef_types_wrappers.h"

// A reference-counted object. The release of the last reference deletes it on the calling thread.
// Thread-safe.
class CefBaseRefCounted {
 public:
  virtual void AddRef() const = 0;
  // True if this was the last reference.
  virtual bool Release() const = 0;
  virtual bool HasOneRef() const = 0;
  virtual bool HasAtLeastOneRef() const = 0;

 protected:
  virtual ~CefBaseRefCounted() = default;
};

// An atomic reference count that starts at zero.
class CefRefCount {
 public:
  void AddRef() const { count_.fetch_add(1, std::memory_order_relaxed); }
  bool Release() const { return count_.fetch_sub(1, std::memory_order_acq_rel) == 1; }
  bool HasOneRef() const { return count_.load(std::memory_order_acquire) == 1; }
  bool HasAtLeastOneRef() const { return count_.load(std::memory_order_acquire) >= 1; }

 private:
  mutable std::atomic<int> count_{0};
};

// Implements the reference counting of a class. Last in its declaration.
#define IMPLEMENT_REFCOUNTING(ClassName)        \
 public:                                        \
  void AddRef() const override {                \
    ref_count_.AddRef();                        \
  }                                             \
  bool Release() const override {               \
    if (!ref_count_.Release()) {                \
      return false;                             \
    }                                           \
    delete static_cast<const ClassName*>(this); \
    return true;                                \
  }                                             \
  bool HasOneRef() const override {             \
    return ref_count_.HasOneRef();              \
  }                                             \
  bool HasAtLeastOneRef() const override {      \
    return ref_count_.HasAtLeastOneRef();       \
  }                                             \
                                                \
 private:                                       \
  CefRefCount ref_count_

#endif  // CEF_INCLUDE_CEF_BASE_H_
