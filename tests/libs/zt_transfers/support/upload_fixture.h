#pragma once

#include <gtest/gtest.h>

#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "fault_server.h"
#include "sandbox.h"
#include "zt_transfers/upload_manager.h"

namespace zt_transfers::test {

// Keeps everything a manager reports. Thread: any.
class CRecorder final : public CUploadManager::ICallback {
 public:
  using Group = CUploadManager::GroupState;

  void onGroupStateChanged(const Group& state) override;
  void onFileStateChanged(const FileState& state) override;

  std::vector<Group> groups() const;
  std::vector<FileState> files() const;
  std::vector<FileState> filesOf(const std::string& fileId) const;
  // The last report; an empty one if there was none.
  Group lastGroup(std::int32_t id) const;
  FileState lastFile(const std::string& fileId) const;
  std::size_t countOfFilesIn(FileStateCode state) const;

  // False when that takes longer than a minute.
  bool waitForGroup(std::int32_t id, const std::function<bool(const Group&)>& accept);
  bool waitForGroupState(std::int32_t id, GroupStateCode state);
  bool waitForFileState(const std::string& fileId, FileStateCode state);

 private:
  mutable std::mutex mutex_;
  std::condition_variable changed_;
  // Guarded by mutex_.
  std::vector<Group> groups_;
  std::vector<FileState> files_;
  std::map<std::int32_t, Group> lastGroups_;
  std::map<std::string, FileState> lastFiles_;
};

// An upload manager against a server of its own, its log in the sandbox.
class CUploadTest : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  // A file to be uploaded to "/<name>", whose fileId is its name.
  CUploadManager::FileDesc describe(const std::string& name, const std::string& content);
  // A started group of these files, marked.
  std::int32_t upload(const std::vector<CUploadManager::FileDesc>& files);
  std::int32_t newGroup(std::uint64_t tokenExpires = 0);
  CUploadManager::GroupState state(std::int32_t groupId);
  std::string log() const;
  // Behind that many bytes of it. False when that takes too long.
  bool waitForLog(const std::string& text, std::size_t from = 0) const;

  CSandbox sandbox;
  CFaultServer server;
  CRecorder recorder;
  CUploadManager manager;
};

}  // namespace zt_transfers::test
