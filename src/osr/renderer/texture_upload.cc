#include "osr/renderer/texture_upload.h"

#include "osr/renderer/gl.h"

namespace client {
namespace {

void skip(const CefPoint& pixels) {
  glPixelStorei(GL_UNPACK_SKIP_PIXELS, pixels.x);
  glPixelStorei(GL_UNPACK_SKIP_ROWS, pixels.y);
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

}  // namespace client
