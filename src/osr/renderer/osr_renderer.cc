#include "osr/renderer/osr_renderer.h"

#include <algorithm>
#include <utility>

#include "osr/renderer/texture_upload.h"

namespace client {

void ChangedArea::add(const CefRect& rect) {
  if (rect.IsEmpty()) {
    return;
  }
  if (around_.IsEmpty()) {
    around_ = rect;
    return;
  }
  const int right = std::max(around_.x + around_.width, rect.x + rect.width);
  const int bottom = std::max(around_.y + around_.height, rect.y + rect.height);
  around_.x = std::min(around_.x, rect.x);
  around_.y = std::min(around_.y, rect.y);
  around_.width = right - around_.x;
  around_.height = bottom - around_.y;
}

CefRect ChangedArea::take(const CefSize& page) {
  const CefRect around = std::exchange(around_, CefRect());
  if (std::exchange(all_, false) || around.IsEmpty()) {
    return {0, 0, page.width, page.height};
  }
  const int left = std::clamp(around.x, 0, page.width);
  const int top = std::clamp(around.y, 0, page.height);
  return {left, top, std::clamp(around.x + around.width, left, page.width) - left,
          std::clamp(around.y + around.height, top, page.height) - top};
}

OsrRenderer::~OsrRenderer() {
  if (textureId_ != 0) {
    glDeleteTextures(1, &textureId_);
  }
}

void OsrRenderer::Initialize() {
  if (initialized_) {
    return;
  }
  glHint(GL_PERSPECTIVE_CORRECTION_HINT, GL_NICEST);
  glClearColor(0, 0, 0, 1);
  glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
  glGenTextures(1, &textureId_);
  glBindTexture(GL_TEXTURE_2D, textureId_);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
  glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
  initialized_ = true;
}

void OsrRenderer::Render() {
  if (viewWidth_ == 0 || viewHeight_ == 0) {
    return;
  }
  drawnRect_ = areaToDraw();
  const bool partly = drawnRect_ != CefRect(0, 0, viewWidth_, viewHeight_);
  if (partly) {
    glEnable(GL_SCISSOR_TEST);
    glScissor(drawnRect_.x, viewHeight_ - drawnRect_.y - drawnRect_.height, drawnRect_.width,
              drawnRect_.height);
  }
  drawAll();
  if (partly) {
    glDisable(GL_SCISSOR_TEST);
  }
}

// A rotation or a moving outline changes more than the painted area.
CefRect OsrRenderer::areaToDraw() {
  if (!surfaceKeepsDrawing_ || showUpdateRect_ || spinX_ != 0 || spinY_ != 0) {
    changed_.addAll();
  }
  return changed_.take({viewWidth_, viewHeight_});
}

void OsrRenderer::drawAll() const {
  glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
  glMatrixMode(GL_MODELVIEW);
  glLoadIdentity();
  glViewport(0, 0, viewWidth_, viewHeight_);
  glMatrixMode(GL_PROJECTION);
  glLoadIdentity();

  drawBackground();
  if (spinX_ != 0) {
    glRotatef(-spinX_, 1, 0, 0);
  }
  if (spinY_ != 0) {
    glRotatef(-spinY_, 0, 1, 0);
  }
  drawPage();
  if (showUpdateRect_ && !updateRect_.IsEmpty()) {
    drawUpdateRect();
  }
}

// Red at the bottom, blue at the top.
void OsrRenderer::drawBackground() const {
  glPushAttrib(GL_ALL_ATTRIB_BITS);
  glBegin(GL_QUADS);
  glColor4f(1, 0, 0, 1);
  glVertex2f(-1, -1);
  glVertex2f(1, -1);
  glColor4f(0, 0, 1, 1);
  glVertex2f(1, 1);
  glVertex2f(-1, 1);
  glEnd();
  glPopAttrib();
}

void OsrRenderer::drawPage() const {
  // Texture row 0, the page's top row, lands at the top.
  static constexpr float kVertices[] = {
      0, 1, -1, -1, 0,  //
      1, 1, 1,  -1, 0,  //
      1, 0, 1,  1,  0,  //
      0, 0, -1, 1,  0,
  };
  if (transparent_) {
    // The pixels are premultiplied.
    glBlendFunc(GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
    glEnable(GL_BLEND);
  }
  glEnable(GL_TEXTURE_2D);
  glBindTexture(GL_TEXTURE_2D, textureId_);
  glInterleavedArrays(GL_T2F_V3F, 0, kVertices);
  glDrawArrays(GL_QUADS, 0, 4);
  glDisable(GL_TEXTURE_2D);
  if (transparent_) {
    glDisable(GL_BLEND);
  }
}

void OsrRenderer::drawUpdateRect() const {
  const int left = updateRect_.x;
  const int right = updateRect_.x + updateRect_.width;
  const int top = updateRect_.y;
  const int bottom = updateRect_.y + updateRect_.height;
  glPushAttrib(GL_ALL_ATTRIB_BITS);
  glMatrixMode(GL_PROJECTION);
  glPushMatrix();
  glLoadIdentity();
  glOrtho(0, viewWidth_, viewHeight_, 0, 0, 1);
  glLineWidth(1);
  glColor3f(1, 0, 0);
  glBegin(GL_LINE_STRIP);
  glVertex2i(left + 1, top);
  glVertex2i(right, top);
  glVertex2i(right, bottom - 1);
  glVertex2i(left + 1, bottom - 1);
  glVertex2i(left + 1, top);
  glEnd();
  glPopMatrix();
  glPopAttrib();
}

void OsrRenderer::OnPopupShow(CefRefPtr<CefBrowser> /*browser*/, bool show) {
  if (!show) {
    ClearPopupRects();
  }
}

void OsrRenderer::OnPopupSize(CefRefPtr<CefBrowser> /*browser*/, const CefRect& rect) {
  if (rect.width <= 0 || rect.height <= 0) {
    return;
  }
  givenPopupRect_ = rect;
  popupRect_ = GetPopupRectInWebView(rect);
}

void OsrRenderer::ClearPopupRects() {
  popupRect_.Set(0, 0, 0, 0);
  givenPopupRect_.Set(0, 0, 0, 0);
}

CefRect OsrRenderer::GetPopupRectInWebView(const CefRect& givenRect) const {
  CefRect rect = givenRect;
  rect.x = std::max(rect.x, 0);
  rect.y = std::max(rect.y, 0);
  if (rect.x + rect.width > viewWidth_) {
    rect.x = viewWidth_ - rect.width;
  }
  if (rect.y + rect.height > viewHeight_) {
    rect.y = viewHeight_ - rect.height;
  }
  rect.x = std::max(rect.x, 0);
  rect.y = std::max(rect.y, 0);
  return rect;
}

void OsrRenderer::OnPaint(CefRefPtr<CefBrowser> /*browser*/,
                          CefRenderHandler::PaintElementType type,
                          const CefRenderHandler::RectList& dirtyRects, const void* buffer,
                          int width, int height) {
  Initialize();
  if (transparent_) {
    glEnable(GL_BLEND);
  }
  glEnable(GL_TEXTURE_2D);
  glBindTexture(GL_TEXTURE_2D, textureId_);
  if (type == PET_VIEW) {
    paintView(dirtyRects, buffer, width, height);
  } else if (type == PET_POPUP && popupRect_.width > 0 && popupRect_.height > 0) {
    uploadPopup({popupRect_.x, popupRect_.y}, {width, height}, {viewWidth_, viewHeight_}, buffer);
    changed_.add({popupRect_.x, popupRect_.y, width, height});
  }
  glDisable(GL_TEXTURE_2D);
  if (transparent_) {
    glDisable(GL_BLEND);
  }
}

void OsrRenderer::paintView(const CefRenderHandler::RectList& dirtyRects, const void* buffer,
                            int width, int height) {
  const CefSize oldSize(viewWidth_, viewHeight_);
  viewWidth_ = width;
  viewHeight_ = height;
  if (showUpdateRect_ && !dirtyRects.empty()) {
    updateRect_ = dirtyRects[0];
  }
  const bool sizeChanged = oldSize.width != width || oldSize.height != height;
  const bool allDirty =
      dirtyRects.size() == 1 && dirtyRects[0] == CefRect(0, 0, oldSize.width, oldSize.height);
  glPixelStorei(GL_UNPACK_ROW_LENGTH, width);
  if (sizeChanged || allDirty) {
    uploadWhole(buffer, {width, height});
    changed_.addAll();
    return;
  }
  for (const CefRect& rect : dirtyRects) {
    uploadPart(buffer, {rect.x, rect.y}, rect);
    changed_.add(rect);
  }
}

void OsrRenderer::setSpin(float aboutX, float aboutY) {
  spinX_ = aboutX;
  spinY_ = aboutY;
  changed_.addAll();
}

}  // namespace client
