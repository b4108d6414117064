// A frame of a browser's page.
#pragma once

#include <QString>
#include <mutex>

#include "include/cef_frame.h"

namespace cef_qt {

class Browser;
class ScriptContext;

// UI thread, except for the methods of CefFrame that start an operation and return at once: they
// may be called from any thread.
class Frame final : public CefFrame {
 public:
  Frame(CefRefPtr<Browser> browser, bool isMain, CefString name, CefString url);

  bool IsMain() override { return isMain_; }
  CefRefPtr<CefBrowser> GetBrowser() override;
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
  // The script context of the frame's document; null while it has none.
  void setContext(CefRefPtr<ScriptContext> context);

 private:
  void edit(int webAction);
  void loadNow(const QString& url);
  void runNow(const QString& script);

  const CefRefPtr<Browser> browser_;
  const bool isMain_;
  const CefString url_;               // of frames other than the main frame
  CefRefPtr<ScriptContext> context_;  // UI thread
  std::mutex mutex_;
  CefString name_;  // guarded by mutex_
  IMPLEMENT_REFCOUNTING(Frame);
};

}  // namespace cef_qt
