// The frames of one browser's page.
#pragma once

#include <QString>
#include <map>

#include "bridge/script_context.h"
#include "include/cef_values.h"

namespace cef_qt {

class Browser;
class Frame;

// Tracks the documents that are attached, with their frames and script contexts. Reports contexts
// to the application's render process handler and passes queries to them. TID_RENDERER.
class FrameRegistry final : public PageReceiver {
 public:
  // Uses the browser between open() and close() only.
  FrameRegistry(Browser* browser, CefRefPtr<CefDictionaryValue> extraInfo);
  ~FrameRegistry();

  // Creates a context for the page's empty first document. The first real document takes it over,
  // so that its functions are known before it loads.
  void open(PageChannel* channel);
  // Detaches all documents. Entries that arrive later are ignored.
  void close();

  void receive(const PageEntry& entry) override;
  // Whether the key is that of the current top document.
  bool isCurrent(const QString& document) const {
    return !document.isEmpty() && document == current_;
  }
  void renderProcessGone() { detachAll(); }

 private:
  struct Document {
    CefRefPtr<Frame> frame;
    CefRefPtr<ScriptContext> context;
  };

  void attach(const PageEntry& entry);
  void attachTop(const PageEntry& entry);
  void attachFrame(const PageEntry& entry);
  void createContext(int frameNumber, CefRefPtr<Frame> frame);
  // Replaces the document's functions if the prediction was wrong.
  void correctFunctions(const PageEntry& entry);
  void detach(int frameNumber);
  void detachAll();

  Browser* const browser_;
  const CefRefPtr<CefDictionaryValue> extraInfo_;
  PageChannel* channel_ = nullptr;     // null before open() and after close()
  QString current_;                    // key of the top document
  std::map<int, Document> documents_;  // by frame number; 0 is the top document
};

}  // namespace cef_qt
