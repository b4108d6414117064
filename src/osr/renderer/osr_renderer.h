#pragma once

#include "include/cef_base.h"
#include "include/cef_render_handler.h"
#include "osr/renderer/gl.h"

namespace client {

// The bounding rectangle of the changes to a page since it was last drawn.
class ChangedArea {
 public:
  void add(const CefRect& rect);
  void addAll() { all_ = true; }

  // Returns and clears the part of a page of this size to redraw; the whole page if no change was
  // recorded.
  CefRect take(const CefSize& page);

 private:
  bool all_ = true;  // nothing has been drawn yet
  CefRect around_;
};

// Holds the page of an off-screen browser in one texture, copies painted regions into it and draws
// it: over a background that shows through a transparent page, with the open pop-up, and optionally
// with an outline of the last updated region.
//
// Ownership: one per view, with the view's lifetime. Thread: UI. The view's OpenGL context must be
// current in Initialize, Render, OnPaint and the destructor. Sizes are in pixels. Buffers hold BGRA
// pixels, top row first, and are read only during the call; no memory is allocated per frame.
class OsrRenderer {
 public:
  OsrRenderer(bool transparent, bool showUpdateRect)
      : transparent_(transparent), showUpdateRect_(showUpdateRect) {}
  OsrRenderer(const OsrRenderer&) = delete;
  OsrRenderer& operator=(const OsrRenderer&) = delete;
  virtual ~OsrRenderer();

  // Sets up the context and the texture, once.
  void Initialize();
  // Draws the page; does nothing before the first view paint.
  void Render();

  // For a surface that preserves its contents: Render then redraws only the changed area.
  void setSurfaceKeepsDrawing(bool keeps) { surfaceKeepsDrawing_ = keeps; }
  // For a new surface: the next Render draws everything.
  void invalidateSurface() { changed_.addAll(); }
  // The rectangle that the latest Render drew, from the page's upper left corner.
  const CefRect& drawnRect() const { return drawnRect_; }

  void OnPopupShow(CefRefPtr<CefBrowser> browser, bool show);
  // Places the pop-up; an empty rectangle changes nothing.
  void OnPopupSize(CefRefPtr<CefBrowser> browser, const CefRect& rect);
  void ClearPopupRects();
  // The rectangle moved into the page; its size is kept.
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
