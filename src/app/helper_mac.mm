#import <Foundation/Foundation.h>

#include "app/main_mac.h"
#include "app/reported_run.h"
#include "app/sub_process.h"
#include "include/cef_sandbox_mac.h"
#include "include/wrapper/cef_library_loader.h"

namespace zantrio {

int runHelper(int argc, char** argv) {
  CefScopedSandboxContext sandbox;
  if (!sandbox.Initialize(argc, argv)) {
    NSLog(@"Zantrio Helper cannot run: the sandbox cannot be entered");
    return 1;
  }
  CefScopedLibraryLoader framework;
  if (!framework.LoadInHelper()) {
    NSLog(@"Zantrio Helper cannot run: the browser framework in the bundle cannot be loaded");
    return 1;
  }
  @autoreleasepool {
    return runReported("Zantrio Helper", [argc, argv] { return runSubProcess(argc, argv); });
  }
}

}  // namespace zantrio
