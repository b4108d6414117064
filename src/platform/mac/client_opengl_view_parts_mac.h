// What ClientOpenGLView is made of, for its own files.
#pragma once

#include "osr/drag_session.h"
#include "osr/interpreted_keys.h"
#include "osr/mouse_input.h"
#include "osr/scroll_gesture.h"
#include "platform/mac/osr_view_mac.h"

namespace client {

// The portable parts that the view translates for. Ownership: the view's, which has them from its
// initialisation to its end.
class ViewParts {
 public:
  ViewParts(ClientOpenGLView* view, bool transparent, bool showUpdateRect);
  ViewParts(const ViewParts&) = delete;
  ViewParts& operator=(const ViewParts&) = delete;
  ~ViewParts();

  CefRefPtr<CefBrowserHost> host() const;

  const std::shared_ptr<OsrViewMac> osr;
  MouseInput mouse{*osr};
  KeyInput keys{*osr};
  InterpretedKeys presses{keys, osr->textInput()};
  DragSession drags{*osr};
  ScrollGesture scroll;
};

}  // namespace client
