// Names of the framework's pointer types.
#ifndef CEF_INCLUDE_INTERNAL_CEF_PTR_H_
#define CEF_INCLUDE_INTERNAL_CEF_PTR_H_

#include <memory>

#include "include/base/cef_scoped_refptr.h"

// Shared ownership by reference counting.
template <class T>
using CefRefPtr = scoped_refptr<T>;

// Exclusive ownership.
template <class T, class D = std::default_delete<T>>
using CefOwnPtr = std::unique_ptr<T, D>;

// Valid during the call only.
template <class T>
using CefRawPtr = T*;

#endif  // CEF_INCLUDE_INTERNAL_CEF_PTR_H_
