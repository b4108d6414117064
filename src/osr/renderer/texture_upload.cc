#include "osr/renderer/texture_upload.h"

#include <algorithm>

#include "osr/renderer/gl.h"

namespace client {
namespace {

void skip(const CefPoint& pixels) {
  glPixelStorei(GL_UNPACK_SKIP_PIXELS, pixels.x);
  glPixelStorei(GL_UNPACK_SKIP_ROWS, pixels.y);
}

// One dimension of the visible part.
struct Span {
  int start;    // in the page
  int length;   // not positive: nothing is visible
  int skipped;  // of the pop-up, before its visible part
};

Span visibleSpan(int position, int length, int room) {
  const int skipped = position < 0 ? -position : 0;
  const int start = std::max(position, 0);
  // Reading starts after the skipped pixels, so the full length would run into the next row.
  return {start, std::min(length - skipped, room - start), skipped};
}

}  // namespace

void uploadWhole(const void* buffer, const CefSize& size) {
  skip({0, 0});
  glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, size.width, size.height, 0, GL_BGRA,
               GL_UNSIGNED_INT_8_8_8_8_REV, buffer);
}

void uploadPart(const void* buffer, const CefPoint& from, const CefRect& target) {
  skip(from);
  glTexSubImage2D(GL_TEXTURE_2D, 0, target.x, target.y, target.width, target.height, GL_BGRA,
                  GL_UNSIGNED_INT_8_8_8_8_REV, buffer);
}

void uploadPopup(const CefPoint& position, const CefSize& size, const CefSize& page,
                 const void* buffer) {
  const Span across = visibleSpan(position.x, size.width, page.width);
  const Span down = visibleSpan(position.y, size.height, page.height);
  if (across.length <= 0 || down.length <= 0) {
    return;
  }
  glPixelStorei(GL_UNPACK_ROW_LENGTH, size.width);
  uploadPart(buffer, {across.skipped, down.skipped},
             {across.start, down.start, across.length, down.length});
}

}  // namespace client
