// Conversion between the framework's text and Qt's. Both are UTF-16.
#pragma once

#include <QString>

#include "include/internal/cef_string.h"

namespace cef_qt {

inline QStringView viewOf(const CefString& text) {
  return {text.c_str(), static_cast<qsizetype>(text.length())};
}

inline QString toQt(const CefString& text) {
  return viewOf(text).toString();
}

inline CefString fromQt(QStringView text) {
  const cef_string_t borrowed{const_cast<char16_t*>(text.utf16()),
                              static_cast<std::size_t>(text.size()), nullptr};
  return {&borrowed};
}

}  // namespace cef_qt
