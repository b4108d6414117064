#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "zt_transfers/export.h"
#include "zt_transfers/transfer_manager_base.h"
#include "zt_transfers/transfer_records.h"

namespace zt_transfers {

// Uploads groups of files in the background.
//
// Ownership: created and destroyed by the program; destruction shuts it down.
// Thread: all operations from one thread; callbacks come from the manager's own threads.
// Errors: an operation on an unknown group changes nothing; a failed file is reported by its state
// and in the library's log.
class ZT_TRANSFERS_EXPORT CUploadManager : public CTransferManagerBase {
 public:
  struct GroupState : GroupStateBase {
    bool marked = false;  // the page has declared the queue complete
  };

  struct Configuration : CTransferManagerBase::Configuration {
    std::uint32_t serverTransferProgressInterval = 0;  // seconds between reports; 0: none
  };

  struct FileDesc {
    std::string fileId;
    std::wstring fileURL;  // a file: URL, one byte a character
    std::string url;       // the target of the PUT
    std::vector<std::pair<std::string, std::string>> headers;
  };

  class ICallback {
   public:
    virtual void onGroupStateChanged(const GroupState& state) = 0;
    virtual void onFileStateChanged(const FileState& state) = 0;

   protected:
    ~ICallback() = default;
  };

  CUploadManager();
  ~CUploadManager() override;

  // Null unsubscribes; no callback is running or follows when the call returns, unless it is
  // made from within a callback.
  void subscribeToEvents(ICallback* callback);

  const Configuration& getConfiguration() const;
  // Takes effect at once, also for running transfers.
  void setConfiguration(const Configuration& configuration);

  // Fills `groups` with all groups in the order of their creation.
  void fetchGroupsInfo(std::vector<GroupState>& groups);
  // `tokenExpires` in seconds since 1970, 0: never. Returns the group's id, -1 on failure.
  std::int32_t createGroup(const std::string& bucketId, const std::string& bucketType,
                           const std::string& token, std::uint64_t tokenExpires);
  // Returns 0 and fills `state` if the group exists.
  int getGroupState(std::int32_t groupId, GroupState& state);

  void queueFiles(std::int32_t groupId, const std::vector<FileDesc>& files);
  // Removes the files with these fileIds; running transfers are stopped.
  void dequeueFile(std::int32_t groupId, const std::vector<FileDesc>& files);
  // A marked group is COMPLETED as soon as all of its files are.
  void markQueue(std::int32_t groupId);
  void unmarkQueue(std::int32_t groupId);
  void pauseGroup(std::int32_t groupId);
  // Also retries failed files.
  void resumeGroup(std::int32_t groupId);
  void cancelGroup(std::int32_t groupId);

  void startup() override;
  void shutdown() override;

 private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace zt_transfers
