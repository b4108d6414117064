#pragma once

#include <string>
#include <vector>

#include "bridge/page_origin.h"
#include "include/cef_frame.h"

namespace zantrio {

// Decides which documents may use the bridges: those of the web application's origin and of further
// origins that the bundle lists. The decision rests on what the browser process knows of a frame,
// not on what its page says.
//
// A document in a frame may use them only if all documents around it may: a page that shows the web
// application in a frame controls what the user sees and clicks there. Documents without an origin
// of their own are refused: files, data, blobs, about:blank, sandboxed frames.
//
// Thread: UI.
class CPageGate {
 public:
  // `appBaseUrl`: the web application's; if it is given by http, https to the same host is
  // admitted, too. `furtherOrigins`: origins, separated by blanks.
  CPageGate(const std::string& appBaseUrl, const std::string& furtherOrigins);

  // False for null.
  bool admits(const CefRefPtr<CefFrame>& frame) const;

 private:
  bool admitsUrl(const std::string& url) const;

  std::vector<PageOrigin> admitted_;
};

}  // namespace zantrio
