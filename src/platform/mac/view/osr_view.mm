#include "platform/mac/view/osr_view.h"

#include "osr/view/view_scale.h"
#include "platform/mac/view/client_opengl_view.h"

// OpenGL, and the name of the gray colour model that all systems have.
#pragma clang diagnostic ignored "-Wdeprecated-declarations"

namespace client {
namespace {

CefRect toCefRect(NSRect rect) {
  return {static_cast<int>(NSMinX(rect)), static_cast<int>(NSMinY(rect)),
          static_cast<int>(NSWidth(rect)), static_cast<int>(NSHeight(rect))};
}

NSRect toNSRect(const CefRect& rect) {
  return NSMakeRect(rect.x, rect.y, rect.width, rect.height);
}

OsrScreen describe(NSScreen* screen) {
  const CefRect frame = toCefRect([screen frame]);
  const CefRect visible = toCefRect([screen visibleFrame]);
  OsrScreen result;
  result.depth = static_cast<int>(NSBitsPerPixelFromDepth([screen depth]));
  result.depthPerComponent = static_cast<int>(NSBitsPerSampleFromDepth([screen depth]));
  result.monochrome = [[screen colorSpace] colorSpaceModel] == NSGrayColorSpaceModel;
  result.rect = toTopLeftOrigin(frame, frame);
  result.availableRect = toTopLeftOrigin(visible, frame);
  return result;
}

}  // namespace

OsrViewMac::OsrViewMac(ClientOpenGLView* view, bool transparent, bool showUpdateRect)
    : view_(view), renderer_(std::make_unique<OsrRenderer>(transparent, showUpdateRect)) {}

OsrViewMac::~OsrViewMac() = default;

void OsrViewMac::detach() {
  renderer_.reset();
  browserProvider_ = nullptr;
  view_ = nil;
}

CefRefPtr<CefBrowser> OsrViewMac::browser() const {
  return browserProvider_ ? browserProvider_() : nullptr;
}

void OsrViewMac::browserClosed() {
  browserProvider_ = nullptr;
  [view_ browserClosed];
}

OsrSize OsrViewMac::bounds() const {
  const NSRect bounds = [view_ bounds];
  return {NSWidth(bounds), NSHeight(bounds)};
}

OsrPoint OsrViewMac::toScreen(const OsrPoint& point) const {
  const NSPoint upright = NSMakePoint(point.x, NSHeight([view_ bounds]) - point.y);
  const NSPoint inWindow = [view_ convertPoint:upright toView:nil];
  const NSRect onScreen =
      [[view_ window] convertRectToScreen:NSMakeRect(inWindow.x, inWindow.y, 0, 0)];
  return {NSMinX(onScreen), NSMinY(onScreen)};
}

std::optional<OsrScreen> OsrViewMac::screen() const {
  NSWindow* const window = [view_ window];
  if (window == nil) {
    return std::nullopt;
  }
  NSScreen* const shown = [window screen];
  return describe(shown != nil ? shown : [NSScreen deepestScreen]);
}

float OsrViewMac::deviceScaleFactor() const {
  return [view_ getDeviceScaleFactor];
}

CefRect OsrViewMac::convertRectToBacking(const CefRect& points) const {
  return toCefRect([view_ convertRectToBackingInternal:toNSRect(points)]);
}

CefRect OsrViewMac::convertRectFromBacking(const CefRect& pixels) const {
  return toCefRect([view_ convertRectFromBackingInternal:toNSRect(pixels)]);
}

void OsrViewMac::stopObservingScale() {
  [view_ stopObservingBackingProperties];
}

void OsrViewMac::redraw() {
  [view_ setNeedsDisplay:YES];
}

void OsrViewMac::makeContextCurrent() {
  [[view_ openGLContext] makeCurrentContext];
}

void OsrViewMac::clearCurrentContext() {
  [NSOpenGLContext clearCurrentContext];
}

void OsrViewMac::flushContext() {
  [[view_ openGLContext] flushBuffer];
}

void OsrViewMac::setCursor(CefCursorHandle cursor, cef_cursor_type_t /*type*/,
                           const CefCursorInfo& /*custom*/) {
  // The framework's handle is the system's cursor itself.
  [(NSCursor*)cursor set];
}

void OsrViewMac::textInputChanged() {
  if (!text_.acceptsText()) {
    [[view_ inputContext] discardMarkedText];
  }
  [[view_ inputContext] invalidateCharacterCoordinates];
}

bool OsrViewMac::startDragging(CefRefPtr<CefBrowser> /*browser*/, CefRefPtr<CefDragData> data,
                               cef_drag_operations_mask_t allowed, int x, int y) {
  return [view_ startDragging:data allowed_ops:allowed point:NSMakePoint(x, y)];
}

void OsrViewMac::setCurrentDragOperation(cef_drag_operations_mask_t operation) {
  [view_ setCurrentDragOperation:operation];
}

}  // namespace client
