#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace zt_transfers {

// A file as the program queued it. `headers` is for uploads only, the members after it are for
// downloads only.
struct FileSpec {
  std::string fileId;
  std::string location;  // upload: the file: URL; download: the path below the group's folder
  std::string url;
  std::vector<std::pair<std::string, std::string>> headers;
  std::uint64_t size = 0;
  std::uint64_t modified = 0;
  std::uint64_t expires = 0;
  std::string contentMd5;
};

// Identifies a file by its index in its group's queue.
struct FileRef {
  std::int32_t groupId = 0;
  std::uint32_t index = 0;
};

}  // namespace zt_transfers
