// The cost of a painted frame; bench/README.md explains the lines.
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "include/cef_app.h"
#include "live_page.h"
#include "surfaces.h"
#include "uploads.h"

namespace {

class App final : public CefApp {
  IMPLEMENT_REFCOUNTING(App);
};

std::string temporaryFolder() {
  std::string pattern = (std::filesystem::temp_directory_path() / "bench_paint_XXXXXX").string();
  return mkdtemp(pattern.data());
}

}  // namespace

int main(int argc, char** argv) {
  if (std::getenv("DISPLAY") == nullptr) {
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
  }
  const std::string folder = temporaryFolder();
  setenv("XDG_RUNTIME_DIR", folder.c_str(), 0);
  const CefMainArgs args(argc, argv);
  CefSettings settings;
  settings.windowless_rendering_enabled = true;
  if (!CefInitialize(args, settings, new App, nullptr)) {
    return 1;
  }
  std::setvbuf(stdout, nullptr, _IOLBF, 0);
  bench::measureUploads();
  bench::compareSurfaces();
  bench::measureLivePages();
  CefShutdown();
  std::error_code ignored;
  std::filesystem::remove_all(folder, ignored);
  return 0;
}
