#pragma once

#include "include/cef_render_handler.h"
#include "osr/renderer/changed_area.h"
#include "osr/renderer/gl.h"

namespace client {

// Keeps the page of an off-screen browser in one texture, copies painted regions into it and draws
// it: over a background that shows through a transparent page, with the open pop-up, and with an
// outline of the last updated region when asked for.
//
// Ownership: one for each view, as long as the view. Thread: UI. The view's OpenGL context must be
// current in Initialize, Render and OnPaint, and when the renderer is deleted. Sizes are in pixels.
// Buffers hold BGRA pixels, top row first, and are read during the call only; nothing is allocated
// for a frame.
class OsrRenderer {
 public:
  OsrRenderer(bool transparent, bool showUpdateRect)
      : transparent_(transparent), showUpdateRect_(showUpdateRect) {}
  OsrRenderer(const OsrRenderer&) = delete;
  OsrRenderer& operator=(const OsrRenderer&) = delete;
  virtual ~OsrRenderer();

  // Sets the context up and makes the texture, once.
  void Initialize();
  // Draws; nothing before the first view paint.
  void Render();

  // For a surface that keeps what was drawn on it: Render draws only around what has changed.
  void setSurfaceKeepsDrawing(bool keeps) { surfaceKeepsDrawing_ = keeps; }
  // The surface is a new one; all of it is drawn next.
  void forgetDrawing() { changed_.addAll(); }
  // What the latest Render drew, from the page's left upper corner.
  const CefRect& drawnRect() const { return drawnRect_; }

  void OnPopupShow(CefRefPtr<CefBrowser> browser, bool show);
  // Places the pop-up; an empty rectangle changes nothing.
  void OnPopupSize(CefRefPtr<CefBrowser> browser, const CefRect& rect);
  void ClearPopupRects();
  // Where a pop-up of this rectangle lies when it is moved into the page; its size is kept.
  CefRect GetPopupRectInWebView(const CefRect& givenRect) const;

  void OnPaint(CefRefPtr<CefBrowser> browser, CefRenderHandler::PaintElementType type,
               const CefRenderHandler::RectList& dirtyRects, const void* buffer, int width,
               int height);

  // Rotation of the drawn page, in degrees.
  void setSpin(float aboutX, float aboutY);
  float spinX() const { return spinX_; }
  float spinY() const { return spinY_; }

  int viewWidth() const { return viewWidth_; }
  int viewHeight() const { return viewHeight_; }
  const CefRect& popupRect() const { return popupRect_; }
  // As the engine gave it, before it was moved into the page.
  const CefRect& givenPopupRect() const { return givenPopupRect_; }

 private:
  void paintView(const CefRenderHandler::RectList& dirtyRects, const void* buffer, int width,
                 int height);
  CefRect areaToDraw();
  void drawAll() const;
  void drawBackground() const;
  void drawPage() const;
  void drawUpdateRect() const;

  const bool transparent_;
  const bool showUpdateRect_;
  bool initialized_ = false;
  GLuint textureId_ = 0;
  int viewWidth_ = 0;
  int viewHeight_ = 0;
  CefRect popupRect_;
  CefRect givenPopupRect_;
  float spinX_ = 0;
  float spinY_ = 0;
  CefRect updateRect_;
  bool surfaceKeepsDrawing_ = false;
  ChangedArea changed_;
  CefRect drawnRect_;
};

}  // namespace client
