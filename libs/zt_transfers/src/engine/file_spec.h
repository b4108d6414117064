#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace zt_transfers {

// What is to be done for one file, as the program queued it. Both managers use it; `headers` is
// for uploads only, what follows it for downloads only.
struct FileSpec {
  std::string fileId;
  std::string place;  // upload: the file: URL; download: the path below the group's folder
  std::string url;
  std::vector<std::pair<std::string, std::string>> headers;
  std::uint64_t size = 0;
  std::uint64_t modified = 0;
  std::uint64_t expires = 0;
  std::string contentMd5;
};

// A file by its place in its group's queue.
struct FileRef {
  std::int32_t groupId = 0;
  std::uint32_t index = 0;
};

}  // namespace zt_transfers
