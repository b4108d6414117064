// The framework's loader on macOS.
#pragma once

class CefScopedLibraryLoader {
 public:
  CefScopedLibraryLoader();
  CefScopedLibraryLoader(const CefScopedLibraryLoader&) = delete;
  CefScopedLibraryLoader& operator=(const CefScopedLibraryLoader&) = delete;
  ~CefScopedLibraryLoader();

  bool LoadInMain();
  bool LoadInHelper();
};
