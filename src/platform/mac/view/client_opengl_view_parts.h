// The members of ClientOpenGLView; included only by its own files.
#pragma once

#include "osr/input/drag_session.h"
#include "osr/input/interpreted_keys.h"
#include "osr/input/mouse_input.h"
#include "osr/input/scroll_gesture.h"
#include "platform/mac/view/osr_view.h"

namespace client {

// The portable objects behind the view. Ownership: the view's, from initialisation to deallocation.
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
