// The frames of one browser's page.
#pragma once

#include <QString>
#include <QUrl>
#include <map>
#include <optional>
#include <vector>

#include "bridge/script_context.h"
#include "include/cef_values.h"

namespace cef_qt {

class Browser;
class Frame;

// Tracks the documents that are attached, with their frames and script contexts. Reports contexts
// to the application's render process handler and passes queries to them. The queries of a document
// wait until its origin is known, or is known not to come (see OriginScheme). TID_RENDERER.
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
  // OriginScheme has received the request with this proof.
  void originArrived(const QString& proof);
  // Whether the key is that of the current top document.
  bool isCurrent(const QString& document) const {
    return !document.isEmpty() && document == current_;
  }
  void renderProcessGone() { detachAll(); }

 private:
  // An entry that waits, with texts of its own.
  struct HeldEntry {
    PageEntry entry;
    QString name;
    QString text;
  };

  struct Document {
    CefRefPtr<Frame> frame;
    CefRefPtr<ScriptContext> context;
    QString proof;  // of OriginScheme; empty before the document attaches
    QString url;    // as the document says
    bool settled = false;
    std::vector<HeldEntry> held;
  };

  void attach(const PageEntry& entry);
  void attachTop(const PageEntry& entry);
  void attachFrame(const PageEntry& entry);
  // The frame around a document in a frame. As that one says, which is its own affair if it lies.
  CefRefPtr<Frame> parentOf(const PageEntry& entry);
  void createContext(int frameNumber, CefRefPtr<Frame> frame);
  // Reads what the document says of itself, and its origin if that has arrived.
  void introduce(int frameNumber, const PageEntry& entry);
  // Sets the document's URL. nullopt: no origin will arrive.
  void settle(int frameNumber, const std::optional<QUrl>& origin);
  // Whether the document's queries wait. Those of frames wait for the top document, too.
  bool mustWait(const Document& document) const;
  void hold(Document& document, const PageEntry& entry);
  void releaseHeld();
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
