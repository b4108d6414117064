#include "files/file_url.h"

#import <Foundation/Foundation.h>

namespace zantrio {
namespace {

enum class PathKind { kAskTheSystem, kDirectory, kNoDirectory };

NSString* urlOf(const char* path, PathKind kind) {
  NSString* const text = [NSString stringWithUTF8String:path];
  NSURL* const url = kind == PathKind::kAskTheSystem
                         ? [NSURL fileURLWithPath:text]
                         : [NSURL fileURLWithPath:text isDirectory:kind == PathKind::kDirectory];
  return [url absoluteString];
}

// Returns nil and logs if the path cannot be converted.
NSString* convert(const char* path, PathKind kind) {
  @try {
    return urlOf(path, kind);
  } @catch (NSException* exception) {
    NSLog(@"Exception occurred while trying to convert file path to url: %@, %@", exception,
          [exception userInfo]);
    return nil;
  }
}

void setUrl(const std::string& path, PathKind kind, std::string& url) {
  @autoreleasepool {
    if (NSString* const converted = convert(path.c_str(), kind)) {
      url = [converted UTF8String];
    }
  }
}

}  // namespace

void filePathToUrl(const std::string& path, std::string& url) {
  setUrl(path, PathKind::kAskTheSystem, url);
}

void filePathToUrl(const std::string& path, bool isDirectory, std::string& url) {
  setUrl(path, isDirectory ? PathKind::kDirectory : PathKind::kNoDirectory, url);
}

}  // namespace zantrio
