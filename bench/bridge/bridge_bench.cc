// Compares queries and executed scripts of the framework with those of a bare web channel, in one
// process and one run. Prints ratios; bench/README.md explains them.
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "bare_page.h"
#include "framework_page.h"
#include "include/cef_app.h"
#include "turns.h"

namespace {

using bench::BarePage;
using bench::FrameworkPage;

std::string temporaryFolder() {
  std::string pattern = (std::filesystem::temp_directory_path() / "bench_bridge_XXXXXX").string();
  return mkdtemp(pattern.data());
}

void measure() {
  FrameworkPage framework;
  BarePage bare;
  const bench::Comparison serial =
      bench::interleave([&] { return framework.queriesPerSecond(1, 300); },
                        [&] { return bare.queriesPerSecond(1, 300); });
  const bench::Comparison flight =
      bench::interleave([&] { return framework.queriesPerSecond(100, 4000); },
                        [&] { return bare.queriesPerSecond(100, 4000); });
  const bench::Comparison scripts =
      bench::interleave([&] { return framework.scriptsPerSecond(1500); },
                        [&] { return bare.scriptsPerSecond(1500); });
  serial.print("queries, one after the other");
  flight.print("queries, 100 in flight");
  scripts.print("executed scripts");
  std::printf("%-32s %10s\n", "all scripts in order",
              framework.scriptsInOrder() && bare.scriptsInOrder() ? "yes" : "NO");
}

}  // namespace

int main(int argc, char** argv) {
  setenv("QT_QPA_PLATFORM", "offscreen", 0);
  const std::string folder = temporaryFolder();
  setenv("XDG_RUNTIME_DIR", folder.c_str(), 0);
  const CefMainArgs args(argc, argv);
  if (!CefInitialize(args, CefSettings(), bench::makeApp(), nullptr)) {
    return 1;
  }
  measure();
  CefShutdown();
  std::error_code ignored;
  std::filesystem::remove_all(folder, ignored);
  return 0;
}
