#include "base/framework_state.h"

#include <mutex>

namespace cef_qt {
namespace {

struct State {
  std::mutex mutex;
  CefRefPtr<CefApp> app;                  // guarded by mutex
  CefRefPtr<CefCommandLine> commandLine;  // guarded by mutex
};

State& state() {
  static State current;
  return current;
}

}  // namespace

void FrameworkState::set(const CefRefPtr<CefApp>& app,
                         const CefRefPtr<CefCommandLine>& commandLine) {
  const std::lock_guard lock(state().mutex);
  state().app = app;
  state().commandLine = commandLine;
}

CefRefPtr<CefApp> FrameworkState::app() {
  const std::lock_guard lock(state().mutex);
  return state().app;
}

CefRefPtr<CefCommandLine> FrameworkState::commandLine() {
  const std::lock_guard lock(state().mutex);
  return state().commandLine;
}

}  // namespace cef_qt
