#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "zt_transfers/download_manager.h"
#include "zt_transfers/upload_manager.h"

namespace zantrio::test {

// The calls and results of the fake transfer library, which is linked instead of the library.
struct FakeTransfers {
  static FakeTransfers& instance();
  // Forgets everything.
  void reset();

  std::vector<std::string> calls;
  zt_transfers::CUploadManager::Configuration uploadConfiguration;
  zt_transfers::CTransferManagerBase::Configuration downloadConfiguration;
  std::vector<zt_transfers::CUploadManager::GroupState> uploadGroups;
  std::vector<zt_transfers::CDownloadManager::GroupState> downloadGroups;
  // Of the last call.
  std::vector<zt_transfers::CUploadManager::FileDesc> uploadFiles;
  std::vector<zt_transfers::CDownloadManager::FileDownloadDetails> downloadFiles;
  std::wstring downloadDirectory;
  std::int32_t createdGroup = 1;
  int groupStateResult = 0;
  bool groupStateThrows = false;
  bool startupThrows = false;
  bool shutdownThrows = false;
  zt_transfers::CUploadManager::ICallback* uploadCallback = nullptr;
  zt_transfers::CDownloadManager::ICallback* downloadCallback = nullptr;
  int managersAlive = 0;
  std::string restEndPoint;
  std::string userAgent;
  std::wstring appFilesPath;
};

}  // namespace zantrio::test
