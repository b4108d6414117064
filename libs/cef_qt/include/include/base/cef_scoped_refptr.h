// The framework's reference-counting pointer.
#ifndef CEF_INCLUDE_BASE_CEF_SCOPED_REFPTR_H_
#define CEF_INCLUDE_BASE_CEF_SCOPED_REFPTR_H_

#include <cstddef>
#include <functional>
#include <type_traits>
#include <utility>

// Holds one reference to an object with AddRef and Release. Pointers to the same object may be used
// on different threads if the object's count is atomic; one pointer object must not be changed by
// two threads at once.
template <class T>
class scoped_refptr {
 public:
  using element_type = T;

  constexpr scoped_refptr() = default;
  constexpr scoped_refptr(std::nullptr_t) {}                // NOLINT(google-explicit-constructor)
  scoped_refptr(T* object) : object_(object) { retain(); }  // NOLINT(google-explicit-constructor)
  scoped_refptr(const scoped_refptr& other) : object_(other.object_) { retain(); }
  scoped_refptr(scoped_refptr&& other) noexcept : object_(other.release()) {}

  template <class U, class = std::enable_if_t<std::is_convertible_v<U*, T*>>>
  scoped_refptr(const scoped_refptr<U>& other)  // NOLINT(google-explicit-constructor)
      : object_(other.get()) {
    retain();
  }
  template <class U, class = std::enable_if_t<std::is_convertible_v<U*, T*>>>
  scoped_refptr(scoped_refptr<U>&& other) noexcept  // NOLINT(google-explicit-constructor)
      : object_(other.release()) {}

  ~scoped_refptr() {
    if (object_) {
      object_->Release();
    }
  }

  scoped_refptr& operator=(std::nullptr_t) {
    reset();
    return *this;
  }
  scoped_refptr& operator=(T* object) {
    scoped_refptr(object).swap(*this);
    return *this;
  }
  // By value, for copies, moves and pointers to derived classes.
  scoped_refptr& operator=(scoped_refptr other) noexcept {
    swap(other);
    return *this;
  }

  T* get() const { return object_; }
  T& operator*() const { return *object_; }
  T* operator->() const { return object_; }
  explicit operator bool() const { return object_ != nullptr; }

  void reset() { scoped_refptr().swap(*this); }
  void swap(scoped_refptr& other) noexcept { std::swap(object_, other.object_); }
  // Transfers the reference to the caller.
  [[nodiscard]] T* release() { return std::exchange(object_, nullptr); }

 private:
  void retain() {
    if (object_) {
      object_->AddRef();
    }
  }

  T* object_ = nullptr;
};

template <class T, class U>
bool operator==(const scoped_refptr<T>& a, const scoped_refptr<U>& b) {
  return a.get() == b.get();
}
template <class T, class U>
bool operator==(const scoped_refptr<T>& a, const U* b) {
  return a.get() == b;
}
template <class T>
bool operator==(const scoped_refptr<T>& a, std::nullptr_t) {
  return a.get() == nullptr;
}
template <class T, class U>
bool operator<(const scoped_refptr<T>& a, const scoped_refptr<U>& b) {
  return std::less<>()(a.get(), b.get());
}

#endif  // CEF_INCLUDE_BASE_CEF_SCOPED_REFPTR_H_
