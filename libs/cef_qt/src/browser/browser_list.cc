#include "browser/browser_list.h"

namespace cef_qt {

BrowserList& BrowserList::instance() {
  static BrowserList list;
  return list;
}

void BrowserList::destroyAll() {
  while (!browsers_.empty()) {
    const CefRefPtr<Browser> browser = browsers_.back();
    browser->destroy();
    std::erase(browsers_, browser);
  }
}

}  // namespace cef_qt
