// The documents of one browser's page.
#pragma once

#include <QString>
#include <map>

#include "bridge/script_context.h"
#include "include/cef_values.h"

namespace cef_qt {

class Browser;
class Frame;

// Knows the frames and script contexts of a page, tells the application's render process handler
// when they come and go, and leads queries to them. Lives on the render side (the UI thread).
class Documents {
 public:
  Documents(Browser* browser, CefRefPtr<CefDictionaryValue> extraInfo);
  ~Documents();

  // The browser is there. A context stands for the page's empty first document; the first real
  // document takes it over, so that its functions are known before it is loaded.
  void start(PageChannel* channel);
  void receive(const PageEntry& entry);
  // Whether the key is the present top document's.
  bool isCurrent(const QString& document) const {
    return !document.isEmpty() && document == current_;
  }
  // The render process ended: all documents are gone.
  void processGone() { releaseAll(); }
  // The browser is gone.
  void stop();

 private:
  struct Document {
    CefRefPtr<Frame> frame;
    CefRefPtr<ScriptContext> context;
  };

  void greet(const PageEntry& entry);
  void greetTop(const PageEntry& entry);
  void greetFrame(const PageEntry& entry);
  void create(int frameNumber, CefRefPtr<Frame> frame);
  void confirmFunctions(const PageEntry& entry);
  void release(int frameNumber);
  void releaseAll();

  Browser* const browser_;
  const CefRefPtr<CefDictionaryValue> extraInfo_;
  PageChannel* channel_ = nullptr;
  QString current_;                    // key of the top document
  std::map<int, Document> documents_;  // by frame number; 0 is the top document
};

}  // namespace cef_qt
