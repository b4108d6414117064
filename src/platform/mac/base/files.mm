// Status and URLs of files.
#import <Foundation/Foundation.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

#include "files/file_status.h"
#include "files/file_url.h"

namespace zantrio {
namespace {

FileStatus::Kind kindOf(mode_t mode) {
  if (S_ISREG(mode)) {
    return FileStatus::Kind::kRegularFile;
  }
  return S_ISDIR(mode) ? FileStatus::Kind::kDirectory : FileStatus::Kind::kOther;
}

std::int64_t microsecondsOf(const timespec& time) {
  return toMicroseconds(time.tv_sec, time.tv_nsec);
}

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

int readFileStatus(const std::string& path, FileStatus& status) {
  return readFileStatus(AT_FDCWD, path, status);
}

int readFileStatus(int folder, const std::string& name, FileStatus& status) {
  struct stat data {};
  if (fstatat(folder, name.c_str(), &data, 0) != 0) {
    return errno;
  }
  status.kind = kindOf(data.st_mode);
  status.identity = {static_cast<std::uint64_t>(data.st_dev), data.st_ino};
  status.size = static_cast<std::uint64_t>(data.st_size);
  status.modifiedMicros = microsecondsOf(data.st_mtimespec);
  status.createdMicros = microsecondsOf(data.st_birthtimespec);
  return 0;
}

void filePathToUrl(const std::string& path, std::string& url) {
  setUrl(path, PathKind::kAskTheSystem, url);
}

void filePathToUrl(const std::string& path, bool isDirectory, std::string& url) {
  setUrl(path, isDirectory ? PathKind::kDirectory : PathKind::kNoDirectory, url);
}

}  // namespace zantrio
