// Reference counting for classes that are not framework interfaces.
#ifndef CEF_INCLUDE_BASE_CEF_REF_COUNTED_H_
#define CEF_INCLUDE_BASE_CEF_REF_COUNTED_H_

#include <atomic>

#include "include/base/cef_scoped_refptr.h"

namespace base {

// Base class of objects that are shared between threads. The last Release deletes the object.
template <class T>
class RefCountedThreadSafe {
 public:
  RefCountedThreadSafe() = default;
  RefCountedThreadSafe(const RefCountedThreadSafe&) = delete;
  RefCountedThreadSafe& operator=(const RefCountedThreadSafe&) = delete;

  void AddRef() const { count_.fetch_add(1, std::memory_order_relaxed); }
  void Release() const {
    if (count_.fetch_sub(1, std::memory_order_acq_rel) == 1) {
      delete static_cast<const T*>(this);
    }
  }
  bool HasOneRef() const { return count_.load(std::memory_order_acquire) == 1; }
  bool HasAtLeastOneRef() const { return count_.load(std::memory_order_acquire) >= 1; }

 protected:
  ~RefCountedThreadSafe() = default;

 private:
  mutable std::atomic<int> count_{0};
};

}  // namespace base

#endif  // CEF_INCLUDE_BASE_CEF_REF_COUNTED_H_
