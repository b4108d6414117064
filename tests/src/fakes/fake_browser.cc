#include "src/fakes/fake_browser.h"

namespace zantrio::test {

void FakeFrame::LoadURL(const CefString& target) {
  loads.push_back(target.ToString());
  url = loads.back();
}

void FakeFrame::ExecuteJavaScript(const CefString& code, const CefString& script_url,
                                  int start_line) {
  scripts.push_back({code.ToString(), script_url.ToString(), start_line});
}

void FakeHost::CloseBrowser(bool force_close) {
  closeCalls.push_back(force_close);
  if (onClose) {
    onClose();
  }
}

bool FakeDragData::GetFileNames(std::vector<CefString>& names) {
  names.assign(paths_.size(), CefString("a display name"));
  return !paths_.empty();
}

bool FakeDragData::GetFilePaths(std::vector<CefString>& paths) {
  paths.assign(paths_.begin(), paths_.end());
  return !paths_.empty();
}

}  // namespace zantrio::test
