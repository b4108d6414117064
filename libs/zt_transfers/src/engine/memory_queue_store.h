#pragma once

#include <cstdint>
#include <memory>
#include <unordered_map>

#include "engine/queue_store.h"

namespace zt_transfers {

// A queue store that lives as long as the process.
class CMemoryQueueStore : public IQueueStore {
 public:
  CMemoryQueueStore();
  ~CMemoryQueueStore() override;

  void append(std::int32_t groupId, const FileSpec& spec) override;
  void replace(FileRef file, const FileSpec& spec) override;
  FileSpec spec(FileRef file) const override;
  std::string fileId(FileRef file) const override;
  std::string place(FileRef file) const override;
  std::optional<std::uint32_t> find(std::int32_t groupId, const std::string& fileId) const override;
  void remove(FileRef file) override;
  void removeGroup(std::int32_t groupId) override;

 private:
  class CGroup;

  std::unordered_map<std::int32_t, std::unique_ptr<CGroup>> groups_;
};

}  // namespace zt_transfers
