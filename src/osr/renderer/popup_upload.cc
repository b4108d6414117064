#include "osr/renderer/popup_upload.h"

#include <algorithm>

#include "osr/renderer/gl.h"
#include "osr/renderer/texture_upload.h"

namespace client {
namespace {

// One dimension of the visible part.
struct Span {
  int start;    // in the page
  int length;   // not positive: nothing is visible
  int skipped;  // of the pop-up, before its visible part
};

Span visibleSpan(int position, int length, int room) {
  const int skipped = position < 0 ? -position : 0;
  const int start = std::max(position, 0);
  // A row is read from behind what is skipped: its full length would reach into the next one.
  return {start, std::min(length - skipped, room - start), skipped};
}

}  // namespace

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
