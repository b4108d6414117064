#include "src/files/fake_browser.h"

namespace zantrio::test {
namespace {

class FakeFrame : public CefFrame {
 public:
  explicit FakeFrame(std::vector<ExecutedScript>& scripts) : scripts_(scripts) {}

  bool IsMain() override { return true; }
  CefRefPtr<CefBrowser> GetBrowser() override { return nullptr; }
  CefString GetURL() override { return "https://app.test/page"; }
  CefString GetName() override { return ""; }
  void LoadURL(const CefString&) override {}
  void ExecuteJavaScript(const CefString& code, const CefString& url, int line) override {
    scripts_.push_back({code.ToString(), url.ToString(), line});
  }
  void Undo() override {}
  void Redo() override {}
  void Cut() override {}
  void Copy() override {}
  void Paste() override {}
  void Delete() override {}
  void SelectAll() override {}
  void SendProcessMessage(CefProcessId, CefRefPtr<CefProcessMessage>) override {}

 private:
  std::vector<ExecutedScript>& scripts_;
  IMPLEMENT_REFCOUNTING(FakeFrame);
};

class FakeBrowser : public CefBrowser {
 public:
  explicit FakeBrowser(CefRefPtr<CefFrame> frame) : frame_(frame) {}

  CefRefPtr<CefBrowserHost> GetHost() override { return nullptr; }
  int GetIdentifier() override { return 1; }
  bool IsSame(CefRefPtr<CefBrowser> that) override { return that.get() == this; }
  bool IsPopup() override { return false; }
  bool IsValid() override { return true; }
  bool IsLoading() override { return false; }
  void Reload() override {}
  void StopLoad() override {}
  CefRefPtr<CefFrame> GetMainFrame() override { return frame_; }
  CefRefPtr<CefFrame> GetFocusedFrame() override { return frame_; }

 private:
  const CefRefPtr<CefFrame> frame_;
  IMPLEMENT_REFCOUNTING(FakeBrowser);
};

}  // namespace

CefRefPtr<CefBrowser> makeFakeBrowser(std::vector<ExecutedScript>& scripts, bool hasMainFrame) {
  CefRefPtr<CefFrame> frame = hasMainFrame ? new FakeFrame(scripts) : nullptr;
  return new FakeBrowser(frame);
}

}  // namespace zantrio::test
