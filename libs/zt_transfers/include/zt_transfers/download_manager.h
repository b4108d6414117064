#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "zt_transfers/export.h"
#include "zt_transfers/transfer_manager_base.h"
#include "zt_transfers/transfer_records.h"

namespace zt_transfers {

// Downloads groups of files in the background, each group into its own folder.
// Ownership, threads and errors: as CUploadManager.
class ZT_TRANSFERS_EXPORT CDownloadManager : public CTransferManagerBase {
 public:
  struct GroupState : GroupStateBase {
    std::int32_t filesCompleted = 0;
    std::wstring downloadFolder;  // one byte a character
  };

  using Configuration = CTransferManagerBase::Configuration;

  struct FileDownloadDetails {
    std::string fileId;
    std::wstring path;           // relative to the group's folder, with the file's name at its end
    std::uint64_t size = 0;      // bytes
    std::uint64_t modified = 0;  // milliseconds since 1970; 0: none
    std::string md5Digest;       // lower-case hexadecimal; empty: not known
    std::string url;
    std::uint64_t expires = 0;  // seconds since 1970; 0: never
  };

  class ICallback {
   public:
    virtual void onGroupStateChanged(const GroupState& state) = 0;
    virtual void onFileStateChanged(const FileState& state) = 0;

   protected:
    ~ICallback() = default;
  };

  CDownloadManager();
  ~CDownloadManager() override;

  void subscribeToEvents(ICallback* callback);

  const Configuration& getConfiguration() const;
  void setConfiguration(const Configuration& configuration);

  void fetchGroupsInfo(std::vector<GroupState>& groups);
  // `downloadDirectory`: the group's folder, one byte a character.
  std::int32_t createGroup(const std::string& bucketId, const std::string& bucketType,
                           const std::string& token, std::uint64_t tokenExpires,
                           const std::wstring& downloadDirectory);
  int getGroupState(std::int32_t groupId, GroupState& state);

  void queueFiles(std::int32_t groupId, const std::vector<FileDownloadDetails>& files);
  void dequeueFiles(std::int32_t groupId, const std::vector<FileDownloadDetails>& files);
  void pauseGroup(std::int32_t groupId);
  void resumeGroup(std::int32_t groupId);
  void cancelGroup(std::int32_t groupId);

  void startup() override;
  void shutdown() override;

 private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace zt_transfers
