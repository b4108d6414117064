// The seam through which off-screen drawing is added to browsers.
#pragma once

#include <memory>

#include "browser/browser_impl.h"

class QWebEngineView;

namespace cef_qt {

// The off-screen part of a browser's window. UI thread.
class OffScreenPart {
 public:
  virtual ~OffScreenPart() = default;

  virtual void setFocus(bool focus) = 0;
  // Whether a drag that the page began is running.
  virtual bool isDragRunning() const = 0;
};

struct OffScreenFactory {
  // The part outlives neither the browser nor its view. UI thread.
  std::unique_ptr<OffScreenPart> (*createPart)(Browser* browser, QWebEngineView* view,
                                               int framesPerSecond);
  // From any thread.
  CefRefPtr<CefBrowserHost> (*createHost)(CefRefPtr<Browser> browser);
};

// Allows off-screen browsers from now on. The factory is never destroyed.
void setOffScreenFactory(const OffScreenFactory* factory);

// Null when the framework runs without off-screen browsers. Any thread.
const OffScreenFactory* offScreenFactory();

}  // namespace cef_qt
