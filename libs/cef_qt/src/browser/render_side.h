// The application's render side, and what documents are expected to be given by it.
#pragma once

#include <QString>

#include "bridge/page_script.h"
#include "include/cef_render_process_handler.h"

namespace cef_qt {

// There is no code of ours in Chromium's render processes: the application's render process handler
// is served on the UI thread, as TID_RENDERER. Documents need their query functions before their
// first script, that is before the handler can be asked; so every document gets the functions that
// the latest one of its kind was given, and is corrected when the handler gives it others.
class RenderSide {
 public:
  // Null when the application has none.
  static CefRefPtr<CefRenderProcessHandler> handler();

  // Called once, before the first browser.
  static void start();

  // The functions that a document was given.
  static void learn(bool isTop, const RouterNameList& given);
  // Whether the current script gives exactly these functions.
  static bool matches(bool isTop, const RouterNameList& given, int scriptVersion);
  // The script of documents that are made from now on.
  static QString currentScript();
};

}  // namespace cef_qt
