#include "app/main_mac.h"

#import <Foundation/Foundation.h>

#include <memory>

#include "app/browser_process.h"
#include "app/reported_run.h"
#include "include/wrapper/cef_library_loader.h"
#include "platform/mac/app/application.h"

namespace zantrio {

int runApplication(int argc, char** argv) {
  CefScopedLibraryLoader framework;
  if (!framework.LoadInMain()) {
    NSLog(@"Zantrio cannot run: the browser framework in the bundle cannot be loaded");
    return 1;
  }
  @autoreleasepool {
    return runReported("Zantrio", [argc, argv] {
      const CApplicationMac application(std::make_unique<CApplicationCommands>());
      return BrowserProcess(argc, argv).run();
    });
  }
}

}  // namespace zantrio
