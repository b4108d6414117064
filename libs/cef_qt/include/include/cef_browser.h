// Browsers and their hosts.
#ifndef CEF_INCLUDE_CEF_BROWSER_H_
#define CEF_INCLUDE_CEF_BROWSER_H_

#include <vector>

#include "include/cef_base.h"
#include "include/cef_drag_data.h"
#include "include/cef_frame.h"
#include "include/cef_navigation_entry.h"
#include "include/cef_process_message.h"
#include "include/cef_request_context.h"
#include "include/cef_values.h"

class CefBrowserHost;
class CefClient;

// A browser in a window or off screen. UI thread.
class CefBrowser : public virtual CefBaseRefCounted {
 public:
  virtual CefRefPtr<CefBrowserHost> GetHost() = 0;
  // Unique in the process.
  virtual int GetIdentifier() = 0;
  virtual bool IsSame(CefRefPtr<CefBrowser> that) = 0;
  virtual bool IsPopup() = 0;
  // False after OnBeforeClose.
  virtual bool IsValid() = 0;
  virtual bool IsLoading() = 0;
  virtual void Reload() = 0;
  virtual void StopLoad() = 0;
  // Null after OnBeforeClose.
  virtual CefRefPtr<CefFrame> GetMainFrame() = 0;
  virtual CefRefPtr<CefFrame> GetFocusedFrame() = 0;
};

// The browser-process side of a browser: its window, closing, and input of off-screen browsers.
class CefBrowserHost : public virtual CefBaseRefCounted {
 public:
  using DragOperationsMask = cef_drag_operations_mask_t;
  using MouseButtonType = cef_mouse_button_type_t;
  using PaintElementType = cef_paint_element_type_t;

  // Creates a browser from a task on the UI thread and then calls OnAfterCreated. Any thread. False
  // if the framework is not running.
  static bool CreateBrowser(const CefWindowInfo& window_info, CefRefPtr<CefClient> client,
                            const CefString& url, const CefBrowserSettings& settings,
                            CefRefPtr<CefDictionaryValue> extra_info,
                            CefRefPtr<CefRequestContext> request_context);

  virtual CefRefPtr<CefBrowser> GetBrowser() = 0;
  virtual CefRefPtr<CefClient> GetClient() = 0;
  // Starts closing the browser; `force_close` skips the page's `beforeunload`.
  virtual void CloseBrowser(bool force_close) = 0;
  virtual CefWindowHandle GetWindowHandle() = 0;
  virtual void SetFocus(bool focus) = 0;
  // The page that is shown; null after OnBeforeClose. UI thread.
  virtual CefRefPtr<CefNavigationEntry> GetVisibleNavigationEntry() = 0;

  // The following methods affect off-screen browsers only.
  virtual void WasResized() = 0;
  virtual void WasHidden(bool hidden) = 0;
  virtual void NotifyScreenInfoChanged() = 0;
  virtual void Invalidate(PaintElementType type) = 0;
  virtual void SendKeyEvent(const CefKeyEvent& event) = 0;
  virtual void SendMouseClickEvent(const CefMouseEvent& event, MouseButtonType type, bool mouseUp,
                                   int clickCount) = 0;
  virtual void SendMouseMoveEvent(const CefMouseEvent& event, bool mouseLeave) = 0;
  virtual void SendMouseWheelEvent(const CefMouseEvent& event, int deltaX, int deltaY) = 0;
  // Shows the unfinished text of an input method in the focused field. It replaces the previous
  // composition or `replacement_range`. `selection_range` is relative to the text.
  virtual void ImeSetComposition(const CefString& text,
                                 const std::vector<CefCompositionUnderline>& underlines,
                                 const CefRange& replacement_range,
                                 const CefRange& selection_range) = 0;
  // Inserts finished text in place of the composition, `replacement_range` or the selection. The
  // caret moves behind the text and by `relative_cursor_pos`.
  virtual void ImeCommitText(const CefString& text, const CefRange& replacement_range,
                             int relative_cursor_pos) = 0;
  // Keeps the composition as finished text.
  virtual void ImeFinishComposingText(bool keep_selection) = 0;
  // Removes the composition.
  virtual void ImeCancelComposition() = 0;
  virtual void DragTargetDragEnter(CefRefPtr<CefDragData> drag_data, const CefMouseEvent& event,
                                   DragOperationsMask allowed_ops) = 0;
  virtual void DragTargetDragOver(const CefMouseEvent& event, DragOperationsMask allowed_ops) = 0;
  virtual void DragTargetDragLeave() = 0;
  virtual void DragTargetDrop(const CefMouseEvent& event) = 0;
  virtual void DragSourceEndedAt(int x, int y, DragOperationsMask op) = 0;
  virtual void DragSourceSystemDragEnded() = 0;
};

#endif  // CEF_INCLUDE_CEF_BROWSER_H_
