// One value of a list or dictionary.
#pragma once

#include <variant>

#include "include/cef_values.h"

namespace cef_qt {

struct NullValue {};

using ValueCell = std::variant<NullValue, bool, int, double, CefString>;

CefValueType typeOf(const ValueCell& cell);

// The cell's value, or T's empty value when it holds another type.
template <class T>
T valueOr(const ValueCell* cell, T otherwise) {
  const T* value = cell ? std::get_if<T>(cell) : nullptr;
  return value ? *value : otherwise;
}

}  // namespace cef_qt
