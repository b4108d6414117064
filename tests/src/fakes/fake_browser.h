#pragma once

#include <functional>
#include <string>
#include <vector>

#include "include/cef_browser.h"
#include "include/cef_client.h"
#include "include/cef_drag_data.h"

namespace zantrio::test {

// A main frame that records scripts, navigations and edit commands.
class FakeFrame : public CefFrame {
 public:
  struct Script {
    std::string code;
    std::string url;
    int line;
  };

  bool IsMain() override { return true; }
  CefRefPtr<CefBrowser> GetBrowser() override { return nullptr; }
  CefRefPtr<CefFrame> GetParent() override { return parent; }
  CefString GetURL() override { return url; }
  CefString GetName() override { return CefString(); }
  void LoadURL(const CefString& target) override;
  void ExecuteJavaScript(const CefString& code, const CefString& script_url,
                         int start_line) override;
  void Undo() override { edits.emplace_back("undo"); }
  void Redo() override { edits.emplace_back("redo"); }
  void Cut() override { edits.emplace_back("cut"); }
  void Copy() override { edits.emplace_back("copy"); }
  void Paste() override { edits.emplace_back("paste"); }
  void Delete() override { edits.emplace_back("delete"); }
  void SelectAll() override { edits.emplace_back("select all"); }
  void SendProcessMessage(CefProcessId /*target*/,
                          CefRefPtr<CefProcessMessage> /*message*/) override {}

  std::string url = "http://127.0.0.1/app";
  CefRefPtr<CefFrame> parent;
  std::vector<std::string> loads;
  std::vector<Script> scripts;
  std::vector<std::string> edits;

 private:
  IMPLEMENT_REFCOUNTING(FakeFrame);
};

class FakeNavigationEntry : public CefNavigationEntry {
 public:
  FakeNavigationEntry(CefString url, int status) : url_(std::move(url)), status_(status) {}

  bool IsValid() override { return true; }
  CefString GetURL() override { return url_; }
  int GetHttpStatusCode() override { return status_; }

 private:
  const CefString url_;
  const int status_;

  IMPLEMENT_REFCOUNTING(FakeNavigationEntry);
};

// A host that records its calls as lines, as in "click 10,20 flags 16 left down x2".
class FakeHost : public CefBrowserHost {
 public:
  CefRefPtr<CefBrowser> GetBrowser() override { return nullptr; }
  CefRefPtr<CefClient> GetClient() override { return nullptr; }
  void CloseBrowser(bool force_close) override;
  CefWindowHandle GetWindowHandle() override { return kNullWindowHandle; }
  void SetFocus(bool focus) override { focused = focus; }
  CefRefPtr<CefNavigationEntry> GetVisibleNavigationEntry() override { return shown; }
  void WasResized() override { lines.emplace_back("resized"); }
  void WasHidden(bool /*hidden*/) override {}
  void NotifyScreenInfoChanged() override { lines.emplace_back("screen info"); }
  void Invalidate(PaintElementType type) override;
  void SendKeyEvent(const CefKeyEvent& event) override;
  void SendMouseClickEvent(const CefMouseEvent& event, MouseButtonType type, bool mouseUp,
                           int clickCount) override;
  void SendMouseMoveEvent(const CefMouseEvent& event, bool mouseLeave) override;
  void SendMouseWheelEvent(const CefMouseEvent& event, int deltaX, int deltaY) override;
  void ImeSetComposition(const CefString& text,
                         const std::vector<CefCompositionUnderline>& underlines,
                         const CefRange& replaced, const CefRange& selected) override;
  void ImeCommitText(const CefString& text, const CefRange& replaced, int cursor) override;
  void ImeFinishComposingText(bool /*keepSelection*/) override { lines.emplace_back("finish"); }
  void ImeCancelComposition() override { lines.emplace_back("cancel"); }
  void DragTargetDragEnter(CefRefPtr<CefDragData> data, const CefMouseEvent& event,
                           DragOperationsMask allowed) override;
  void DragTargetDragOver(const CefMouseEvent& event, DragOperationsMask allowed) override;
  void DragTargetDragLeave() override { lines.emplace_back("leave"); }
  void DragTargetDrop(const CefMouseEvent& event) override;
  void DragSourceEndedAt(int x, int y, DragOperationsMask op) override;
  void DragSourceSystemDragEnded() override { lines.emplace_back("drag over"); }

  std::vector<bool> closeCalls;  // the force of each
  std::function<void()> onClose;
  bool focused = false;
  CefRefPtr<CefNavigationEntry> shown;  // null: nothing yet
  std::vector<std::string> lines;
  CefRefPtr<CefDragData> entered;
  std::function<void(PaintElementType)> onInvalidate;

 private:
  IMPLEMENT_REFCOUNTING(FakeHost);
};

class FakeBrowser : public CefBrowser {
 public:
  explicit FakeBrowser(int identifier = 1, bool popup = false)
      : identifier_(identifier), popup_(popup) {}

  CefRefPtr<CefBrowserHost> GetHost() override { return host; }
  int GetIdentifier() override { return identifier_; }
  bool IsSame(CefRefPtr<CefBrowser> that) override { return that->GetIdentifier() == identifier_; }
  bool IsPopup() override { return popup_; }
  bool IsValid() override { return true; }
  bool IsLoading() override { return loading; }
  void Reload() override {}
  void StopLoad() override {}
  CefRefPtr<CefFrame> GetMainFrame() override { return frame; }
  CefRefPtr<CefFrame> GetFocusedFrame() override { return frame; }

  CefRefPtr<FakeHost> host = new FakeHost;
  CefRefPtr<FakeFrame> frame = new FakeFrame;  // null: the browser has none
  bool loading = false;

 private:
  const int identifier_;
  const bool popup_;

  IMPLEMENT_REFCOUNTING(FakeBrowser);
};

// A drag of files, or of something else when there are none.
class FakeDragData : public CefDragData {
 public:
  explicit FakeDragData(std::vector<std::string> paths) : paths_(std::move(paths)) {}

  CefRefPtr<CefDragData> Clone() override { return this; }
  bool IsReadOnly() override { return true; }
  bool IsLink() override { return false; }
  bool IsFragment() override { return paths_.empty(); }
  bool IsFile() override { return !paths_.empty(); }
  CefString GetLinkURL() override { return CefString(); }
  CefString GetLinkTitle() override { return CefString(); }
  CefString GetFragmentText() override { return CefString(); }
  CefString GetFragmentHtml() override { return CefString(); }
  CefString GetFileName() override { return CefString(); }
  size_t GetFileContents(CefRefPtr<CefStreamWriter> /*writer*/) override { return 0; }
  bool GetFileNames(std::vector<CefString>& names) override;
  bool GetFilePaths(std::vector<CefString>& paths) override;
  void SetLinkURL(const CefString& /*url*/) override {}
  void SetFragmentText(const CefString& /*text*/) override {}
  void AddFile(const CefString& /*path*/, const CefString& /*name*/) override {}

 private:
  const std::vector<std::string> paths_;

  IMPLEMENT_REFCOUNTING(FakeDragData);
};

}  // namespace zantrio::test
