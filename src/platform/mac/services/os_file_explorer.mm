#include "platform/mac/services/os_file_explorer.h"

#import <AppKit/AppKit.h>
#include <CoreServices/CoreServices.h>

#include <new>

#include "platform/mac/base/system_text.h"

namespace zantrio {
namespace {

// A separate function, so that the URL is released before the exception is caught.
void openWithLaunchServices(const std::string& url) {
  const CfOwned<CFURLRef> opened(
      CFURLCreateWithBytes(nullptr, reinterpret_cast<const UInt8*>(url.data()),
                           static_cast<CFIndex>(url.size()), kCFStringEncodingASCII, nullptr));
  LSOpenCFURLRef(opened.get(), nullptr);
}

}  // namespace

bool COsFileExplorerMac::openFolder(const std::string& path) {
  @autoreleasepool {
    @try {
      NSURL* const folder = [NSURL fileURLWithPath:[NSString stringWithUTF8String:path.c_str()]
                                       isDirectory:YES];
      [[NSWorkspace sharedWorkspace] openURL:folder];
      return true;
    } @catch (NSException* exception) {
      NSLog(@"The folder could not be opened: %@", exception);
      return false;
    }
  }
}

bool COsFileExplorerMac::openURL(const std::string& url) {
  @autoreleasepool {
    @try {
      openWithLaunchServices(url);
      return true;
    } @catch (NSException* exception) {
      NSLog(@"The URL could not be opened: %@", exception);
      return false;
    }
  }
}

std::unique_ptr<IOsFileExplorer> createOsFileExplorer() {
  return std::unique_ptr<IOsFileExplorer>(new (std::nothrow) COsFileExplorerMac);
}

}  // namespace zantrio
