#include "app/log/private_file_channel.h"

#include <filesystem>
#include <system_error>

namespace zantrio {

void CPrivateFileChannel::log(const Poco::Message& message) {
  FileChannel::log(message);
  const std::uint64_t before = size_;
  size_ = size();
  // A file of which nothing or less was known is another one.
  if (before == 0 || size_ < before) {
    namespace fs = std::filesystem;
    std::error_code impossible;
    fs::permissions(getProperty("path"), fs::perms::owner_read | fs::perms::owner_write,
                    impossible);
  }
}

}  // namespace zantrio
