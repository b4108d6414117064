// The framework's sandbox of the sub-processes on macOS, declared with the framework's names.
#pragma once

class CefScopedSandboxContext {
 public:
  CefScopedSandboxContext();
  CefScopedSandboxContext(const CefScopedSandboxContext&) = delete;
  CefScopedSandboxContext& operator=(const CefScopedSandboxContext&) = delete;
  ~CefScopedSandboxContext();

  bool Initialize(int argc, char** argv);
};
