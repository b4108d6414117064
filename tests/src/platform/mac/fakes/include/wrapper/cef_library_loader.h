// What loads the framework at run time on macOS, declared with the framework's names.
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
