// The script context of one document.
#pragma once

#include <QPointer>
#include <QString>
#include <functional>
#include <map>
#include <vector>

#include "bridge/page_channel.h"
#include "bridge/page_script.h"
#include "include/cef_v8.h"

namespace cef_qt {

// Handles the queries of the documents in which it is installed. TID_RENDERER.
class QueryTarget {
 public:
  // The id is unique in the document.
  virtual void query(const CefRefPtr<CefV8Context>& context, int id, CefString request,
                     bool persistent) = 0;
  virtual void cancel(const CefRefPtr<CefV8Context>& context, int id) = 0;

 protected:
  ~QueryTarget() = default;
};

// Valid until its document is detached; afterwards nothing is sent to the page. TID_RENDERER.
class ScriptContext final : public CefV8Context {
 public:
  ScriptContext(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame, PageChannel* channel);

  bool IsValid() override { return !channel_.isNull(); }
  CefRefPtr<CefBrowser> GetBrowser() override { return browser_; }
  CefRefPtr<CefFrame> GetFrame() override { return frame_; }
  bool IsSame(CefRefPtr<CefV8Context> that) override { return that.get() == this; }

  // Unique in this process.
  int id() const { return id_; }

  // Gives the document a query function and its cancel function. False if the name is taken. The
  // target must outlive the context or be uninstalled.
  bool install(const RouterNames& names, QueryTarget* target);
  void uninstall(QueryTarget* target);
  const RouterNameList& installed() const { return installed_; }

  // Called when the context's document attaches.
  void bind(const QString& document, int frameNumber);
  bool isBound() const { return !document_.isEmpty(); }

  // Hands a query or a cancellation to its target.
  void dispatch(const PageEntry& entry);

  void succeed(int queryId, const CefString& response);
  void fail(int queryId, int code, const CefString& message);
  void send(PageChannel::Command command, const QString& text);

  void invalidate() { channel_.clear(); }

 private:
  const int id_;
  const CefRefPtr<CefBrowser> browser_;
  const CefRefPtr<CefFrame> frame_;
  QPointer<PageChannel> channel_;
  QString document_;
  int frameNumber_ = 0;
  RouterNameList installed_;
  std::map<QString, QueryTarget*, std::less<>> targets_;
  IMPLEMENT_REFCOUNTING(ScriptContext);
};

}  // namespace cef_qt
