// The open browsers.
#pragma once

#include <vector>

#include "browser/browser_impl.h"

namespace cef_qt {

// UI thread.
class BrowserList {
 public:
  static BrowserList& instance();

  void add(CefRefPtr<Browser> browser) { browsers_.push_back(std::move(browser)); }
  void remove(const CefRefPtr<Browser>& browser) { std::erase(browsers_, browser); }
  // The first browser that matches; null if none does.
  template <class Predicate>
  CefRefPtr<Browser> find(Predicate matches) const {
    for (const auto& browser : browsers_) {
      if (matches(*browser)) {
        return browser;
      }
    }
    return nullptr;
  }

  template <class Work>
  void forEach(Work work) const {
    for (const auto& browser : browsers_) {
      work(*browser);
    }
  }

  // Destroys all browsers without asking.
  void destroyAll();

 private:
  std::vector<CefRefPtr<Browser>> browsers_;
};

}  // namespace cef_qt
