// Text between the framework and Qt: UTF-16 on both sides.
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
  return std::u16string(text.utf16(), static_cast<std::size_t>(text.size()));
}

}  // namespace cef_qt
