#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "include/cef_browser.h"
#include "include/cef_drag_data.h"

namespace client {

class OsrRenderer;
class TextInput;

// In view points, from the view's upper left corner unless noted.
struct OsrPoint {
  double x = 0;
  double y = 0;
};

struct OsrSize {
  double width = 0;
  double height = 0;
};

// The screen of a view. Rectangles start at the upper left corner.
struct OsrScreen {
  int depth = 0;  // bits of a pixel
  int depthPerComponent = 0;
  bool monochrome = false;
  CefRect rect;
  CefRect availableRect;  // without docks and menu bars
};

// The system's view as the portable part of an off-screen browser sees it. Held by the system,
// elsewhere weakly. Thread: UI.
class OsrView {
 public:
  OsrView() = default;
  OsrView(const OsrView&) = delete;
  OsrView& operator=(const OsrView&) = delete;
  virtual ~OsrView() = default;

  virtual OsrRenderer& renderer() = 0;
  virtual TextInput& textInput() = 0;
  // Null before the browser exists and once it is closed.
  virtual CefRefPtr<CefBrowser> browser() const = 0;
  // Releases the browser and closes the window.
  virtual void browserClosed() = 0;

  virtual OsrSize bounds() const = 0;
  virtual OsrPoint toScreen(const OsrPoint& point) const = 0;
  // None while the view has no window.
  virtual std::optional<OsrScreen> screen() const = 0;
  virtual float deviceScaleFactor() const = 0;
  virtual CefRect convertRectToBacking(const CefRect& points) const = 0;
  virtual CefRect convertRectFromBacking(const CefRect& pixels) const = 0;
  virtual void stopObservingScale() = 0;

  // Schedules a redraw.
  virtual void redraw() = 0;
  virtual void makeContextCurrent() = 0;
  virtual void clearCurrentContext() = 0;
  virtual void flushContext() = 0;

  virtual void setCursor(CefCursorHandle cursor, cef_cursor_type_t type,
                         const CefCursorInfo& custom) = 0;
  // The input method must query `textInput` again.
  virtual void textInputChanged() = 0;
  // False when the drag cannot be started.
  virtual bool startDragging(CefRefPtr<CefBrowser> browser, CefRefPtr<CefDragData> data,
                             cef_drag_operations_mask_t allowed, int x, int y) = 0;
  virtual void setCurrentDragOperation(cef_drag_operations_mask_t operation) = 0;
};

// Returns the view's browser; null before it exists.
using BrowserProvider = std::function<CefRefPtr<CefBrowser>()>;

struct OffScreenViewOptions {
  std::string title;  // UTF-8
  CefRect bounds;     // of the page, in points
  bool transparent = false;
  bool showUpdateRect = false;
  BrowserProvider browserProvider;
};

// Opens a window with a view for an off-screen browser. It owns itself until its browser is closed.
// Returns null and sets `error` if the system has no OpenGL.
std::shared_ptr<OsrView> createOffScreenView(const OffScreenViewOptions& options,
                                             std::string& error);

// The native handle to pass to the framework as the browser's parent.
CefWindowHandle windowOf(const OsrView& view);

}  // namespace client
