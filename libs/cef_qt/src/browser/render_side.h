// The application's render process handler, and the functions that it gives to documents.
#pragma once

#include <QString>

#include "bridge/page_script.h"
#include "include/cef_render_process_handler.h"

namespace cef_qt {

// Qt loads no code of ours into Chromium's render processes, so the handler runs on the UI thread
// as TID_RENDERER. Documents need their query functions before their first script runs, when the
// handler cannot be asked yet. The script therefore predicts the functions: a document gets those
// of the latest document of its kind (top or in a frame), and wrong predictions are corrected when
// the document attaches.
class RenderSide {
 public:
  // Null if the application has none.
  static CefRefPtr<CefRenderProcessHandler> handler();

  // Called once, before the first browser is created.
  static void start();

  // Makes the functions given to a document the prediction for the next one of its kind.
  static void recordFunctions(bool isTop, const RouterNameList& given);
  // Whether the script of this version gave a document exactly these functions.
  static bool scriptGave(bool isTop, const RouterNameList& given, int scriptVersion);
  // The script for new documents.
  static QString currentScript();
};

}  // namespace cef_qt
