#pragma once

#include <gtest/gtest.h>

#include <condition_variable>
#include <filesystem>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "fault_server.h"
#include "sandbox.h"
#include "support/eventually.h"
#include "zt_transfers/download_manager.h"

namespace zt_transfers::test {

using zantrio::test::eventually;

// Keeps the last that a download manager reports. Thread: any.
class CDownloadRecorder final : public CDownloadManager::ICallback {
 public:
  using Group = CDownloadManager::GroupState;

  void onGroupStateChanged(const Group& state) override;
  void onFileStateChanged(const FileState& state) override;

  Group group(std::int32_t id) const;
  FileState file(const std::string& fileId) const;
  // The most that any report of a group said.
  float maxPercent() const;
  // How often the group was reported to be completed.
  int completions(std::int32_t id) const;

  // False when that takes longer than a minute.
  bool waitForGroup(std::int32_t id, const std::function<bool(const Group&)>& accept);
  bool waitForGroupState(std::int32_t id, GroupStateCode state);
  bool waitForFileState(const std::string& fileId, FileStateCode state);

 private:
  mutable std::mutex mutex_;
  std::condition_variable changed_;
  // Guarded by mutex_.
  std::map<std::int32_t, Group> groups_;
  std::map<std::string, FileState> files_;
  float maxPercent_ = 0;
  std::map<std::int32_t, int> completions_;
};

// A download manager against a server of its own; the log is in the sandbox, and `target` is the
// group's folder.
class CDownloadTest : public ::testing::Test {
 protected:
  using File = CDownloadManager::FileDownloadDetails;

  void SetUp() override;
  void TearDown() override;

  // Puts the content on the server, as "/<id>", and describes it: its fileId and path are its id.
  File offer(const std::string& id, const std::string& content);
  std::int32_t newGroup(std::uint64_t tokenExpires = 0);
  // A started group of these files.
  std::int32_t download(const std::vector<File>& files);
  // The same, waited for until nothing is left to do.
  std::int32_t downloadAll(const std::vector<File>& files);
  void configure(const std::function<void(CDownloadManager::Configuration&)>& change);
  void retryAtMost(std::uint32_t times);
  std::string log() const;
  bool waitForLog(const std::string& text) const;
  // Everything below the target folder, relative to it, sorted.
  std::vector<std::string> namesThere() const;

  CSandbox sandbox;
  std::filesystem::path target;
  CFaultServer server;
  CDownloadRecorder recorder;
  CDownloadManager manager;
};

}  // namespace zt_transfers::test
