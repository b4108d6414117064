#pragma once

#include <optional>

#include "include/cef_browser.h"
#include "include/cef_drag_data.h"

namespace client {

class OsrRenderer;
class TextInput;

// In view points, from the view's left upper corner unless said.
struct OsrPoint {
  double x = 0;
  double y = 0;
};

struct OsrSize {
  double width = 0;
  double height = 0;
};

// The screen that a view is on. Rectangles count from the left upper corner.
struct OsrScreen {
  int depth = 0;  // bits of a pixel
  int depthPerComponent = 0;
  bool monochrome = false;
  CefRect rect;
  CefRect availableRect;  // without docks and menu bars
};

// What the portable part of an off-screen browser asks of the system's view. The view is held by
// the system; others hold it weakly. Thread: UI.
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
  virtual void forgetBrowser() = 0;

  virtual OsrSize bounds() const = 0;
  virtual OsrPoint toScreen(const OsrPoint& point) const = 0;
  // None while the view has no window.
  virtual std::optional<OsrScreen> screen() const = 0;
  virtual float deviceScaleFactor() const = 0;
  virtual CefRect convertRectToBacking(const CefRect& points) const = 0;
  virtual CefRect convertRectFromBacking(const CefRect& pixels) const = 0;
  virtual void stopObservingScale() = 0;

  // Asks the system to draw the view soon.
  virtual void redraw() = 0;
  virtual void makeContextCurrent() = 0;
  virtual void clearCurrentContext() = 0;
  virtual void flushContext() = 0;

  virtual void setCursor(CefCursorHandle cursor, cef_cursor_type_t type,
                         const CefCursorInfo& custom) = 0;
  // The system's input method has to ask `textInput` again.
  virtual void textInputChanged() = 0;
  // False when the drag cannot be started.
  virtual bool startDragging(CefRefPtr<CefBrowser> browser, CefRefPtr<CefDragData> data,
                             cef_drag_operations_mask_t allowed, int x, int y) = 0;
  virtual void setCurrentDragOperation(cef_drag_operations_mask_t operation) = 0;
};

}  // namespace client
