// A frame of a browser's page, or a document in it.
#pragma once

#include <QString>
#include <mutex>
#include <optional>

#include "include/cef_frame.h"

namespace cef_qt {

class Browser;
class ScriptContext;

// The browser's main frame shows one document after the other, and its URL is that of the window.
// Every document has a frame of its own, too, whose URL stays the document's: a query may be
// handled when its document has been left.
//
// UI thread, except for the methods of CefFrame that start an operation and return at once: they
// may be called from any thread.
class Frame final : public CefFrame {
 public:
  Frame(CefRefPtr<Browser> browser, bool isMain, CefString name, CefRefPtr<CefFrame> parent);

  bool IsMain() override { return isMain_; }
  CefRefPtr<CefBrowser> GetBrowser() override;
  CefRefPtr<CefFrame> GetParent() override { return parent_; }
  CefString GetURL() override;
  CefString GetName() override;
  void LoadURL(const CefString& url) override;
  void ExecuteJavaScript(const CefString& code, const CefString& script_url,
                         int start_line) override;
  void Undo() override;
  void Redo() override;
  void Cut() override;
  void Copy() override;
  void Paste() override;
  void Delete() override;
  void SelectAll() override;
  void SendProcessMessage(CefProcessId target_process,
                          CefRefPtr<CefProcessMessage> message) override;

  void setName(const CefString& name);
  // Makes this the frame of a document.
  void setUrl(CefString url) { url_ = std::move(url); }
  // The script context of the frame's document; null while it has none.
  void setContext(CefRefPtr<ScriptContext> context);

 private:
  void edit(int webAction);
  void loadNow(const QString& url);
  void runNow(const QString& script);

  const CefRefPtr<Browser> browser_;
  const bool isMain_;
  const CefRefPtr<CefFrame> parent_;  // null for a main frame
  std::optional<CefString> url_;      // of a document; UI thread
  CefRefPtr<ScriptContext> context_;  // UI thread
  std::mutex mutex_;
  CefString name_;  // guarded by mutex_
  IMPLEMENT_REFCOUNTING(Frame);
};

}  // namespace cef_qt
