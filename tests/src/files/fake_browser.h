#pragma once

#include <string>
#include <vector>

#include "include/cef_browser.h"

namespace zantrio::test {

struct ExecutedScript {
  std::string code;
  std::string url;
  int line = -1;
};

// A browser whose main frame, on https://app.test/page, writes the scripts it is given into
// `scripts`; without one when `hasMainFrame` is false.
CefRefPtr<CefBrowser> makeFakeBrowser(std::vector<ExecutedScript>& scripts, bool hasMainFrame);

}  // namespace zantrio::test
