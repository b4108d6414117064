#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "engine/file_spec.h"

namespace zt_transfers {

// Keeps what was queued, out of the engine's way: the engine itself holds a few bytes a file.
// Indices of a group count from 0 without gaps.
//
// Thread: the engine calls it one call at a time.
class IQueueStore {
 public:
  virtual ~IQueueStore() = default;

  // Keeps the next file of the group, whose fileId must be new to it, or another description of
  // one that is there.
  virtual void append(std::int32_t groupId, const FileSpec& spec) = 0;
  virtual void replace(FileRef file, const FileSpec& spec) = 0;

  virtual FileSpec spec(FileRef file) const = 0;
  virtual std::string fileId(FileRef file) const = 0;
  virtual std::string place(FileRef file) const = 0;
  // The file with this fileId that was appended last and not removed.
  virtual std::optional<std::uint32_t> find(std::int32_t groupId,
                                            const std::string& fileId) const = 0;

  virtual void remove(FileRef file) = 0;
  virtual void removeGroup(std::int32_t groupId) = 0;
};

}  // namespace zt_transfers
