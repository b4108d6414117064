#include "download/content_hash.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <system_error>

namespace zt_transfers {
namespace {

constexpr std::uint64_t kReadBack = 256ULL * 1024;  // bytes at once; they stay in the core's cache

}  // namespace

void CContentHash::add(const char* data, std::size_t size) {
  md5_.add(data, size);
  position_ += size;
}

void CContentHash::readBack(int file, std::uint64_t end) {
  if (position_ >= end) {
    return;
  }
  const std::unique_ptr<char[]> buffer(new char[kReadBack]);
  while (position_ < end) {
    const auto wanted = static_cast<std::size_t>(std::min(kReadBack, end - position_));
    const ssize_t got = ::pread(file, buffer.get(), wanted, static_cast<off_t>(position_));
    if (got < 0 && errno == EINTR) {
      continue;
    }
    if (got <= 0) {
      throw std::system_error(got == 0 ? EIO : errno, std::generic_category(),
                              "cannot read back the partial file");
    }
    add(buffer.get(), static_cast<std::size_t>(got));
  }
}

}  // namespace zt_transfers
