#pragma once

#include <exception>

#include "app/log/logger.h"

namespace zantrio {

// Logs a caught exception. A failure to log it is ignored: nothing else can report it.
inline void logCaught(const char* operation, const char* text) noexcept {
  try {
    logError(operation, ": Exception: ", text);
  } catch (...) {
  }
}

// For framework callbacks, posted tasks and timer tasks, which no exception may leave: every
// exception is caught and logged under the operation's name.
template <class Body>
void guarded(const char* operation, const Body& body) noexcept {
  try {
    body();
  } catch (const std::exception& exception) {
    logCaught(operation, exception.what());
  } catch (...) {
    logCaught(operation, "unknown");
  }
}

// The same for operations with a result, which is `fallback` when an exception was caught.
template <class Result, class Body>
Result guarded(const char* operation, Result fallback, const Body& body) noexcept {
  guarded(operation, [&] { fallback = body(); });
  return fallback;
}

}  // namespace zantrio
