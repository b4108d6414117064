#include "upload_fixture.h"

#include <algorithm>
#include <chrono>
#include <thread>

#include "base/wide_bytes.h"
#include "zt_transfers/global_config.h"

namespace zt_transfers::test {
namespace {

constexpr std::chrono::seconds kLongWait{60};

}  // namespace

void CRecorder::onGroupStateChanged(const Group& state) {
  {
    const std::lock_guard lock(mutex_);
    groups_.push_back(state);
    lastGroups_[state.id] = state;
  }
  changed_.notify_all();
}

void CRecorder::onFileStateChanged(const FileState& state) {
  {
    const std::lock_guard lock(mutex_);
    files_.push_back(state);
    lastFiles_[state.fileId] = state;
  }
  changed_.notify_all();
}

std::vector<CRecorder::Group> CRecorder::groups() const {
  const std::lock_guard lock(mutex_);
  return groups_;
}

std::vector<FileState> CRecorder::files() const {
  const std::lock_guard lock(mutex_);
  return files_;
}

std::vector<FileState> CRecorder::filesOf(const std::string& fileId) const {
  std::vector<FileState> chosen;
  for (const FileState& file : files()) {
    if (file.fileId == fileId) {
      chosen.push_back(file);
    }
  }
  return chosen;
}

CRecorder::Group CRecorder::lastGroup(std::int32_t id) const {
  const std::lock_guard lock(mutex_);
  const auto found = lastGroups_.find(id);
  return found == lastGroups_.end() ? Group{} : found->second;
}

FileState CRecorder::lastFile(const std::string& fileId) const {
  const std::lock_guard lock(mutex_);
  const auto found = lastFiles_.find(fileId);
  return found == lastFiles_.end() ? FileState{} : found->second;
}

std::size_t CRecorder::countOfFilesIn(FileStateCode state) const {
  const std::lock_guard lock(mutex_);
  return static_cast<std::size_t>(
      std::count_if(lastFiles_.begin(), lastFiles_.end(),
                    [state](const auto& entry) { return entry.second.state == state; }));
}

bool CRecorder::waitForGroup(std::int32_t id, const std::function<bool(const Group&)>& accept) {
  std::unique_lock lock(mutex_);
  return changed_.wait_for(lock, kLongWait, [&] {
    const auto found = lastGroups_.find(id);
    return found != lastGroups_.end() && accept(found->second);
  });
}

bool CRecorder::waitForGroupState(std::int32_t id, GroupStateCode state) {
  return waitForGroup(id, [state](const Group& group) { return group.state == state; });
}

bool CRecorder::waitForFileState(const std::string& fileId, FileStateCode state) {
  std::unique_lock lock(mutex_);
  return changed_.wait_for(lock, kLongWait, [&] {
    const auto found = lastFiles_.find(fileId);
    return found != lastFiles_.end() && found->second.state == state;
  });
}

void CUploadTest::SetUp() {
  auto* config = CZtTransfersGlobalConfig::getInstance();
  config->setAppFilesPath(widened(sandbox.folder().string()));
  config->setUserAgent("Zantrio-Test/1.0");
  manager.subscribeToEvents(&recorder);
}

void CUploadTest::TearDown() {
  server.release();
  manager.shutdown();
  manager.subscribeToEvents(nullptr);
}

CUploadManager::FileDesc CUploadTest::describe(const std::string& name,
                                               const std::string& content) {
  CUploadManager::FileDesc file;
  file.fileId = name;
  file.fileURL = fileUrl(sandbox.file(name, content));
  file.url = server.url("/" + name);
  return file;
}

std::int32_t CUploadTest::newGroup(std::uint64_t tokenExpires) {
  return manager.createGroup("bucket", "message", "secret-token", tokenExpires);
}

std::int32_t CUploadTest::upload(const std::vector<CUploadManager::FileDesc>& files) {
  const std::int32_t group = newGroup();
  manager.queueFiles(group, files);
  manager.markQueue(group);
  manager.startup();
  return group;
}

CUploadManager::GroupState CUploadTest::state(std::int32_t groupId) {
  CUploadManager::GroupState state;
  EXPECT_EQ(manager.getGroupState(groupId, state), 0);
  return state;
}

std::string CUploadTest::log() const {
  return contentOf(sandbox.folder() / "zt_transfers.log");
}

bool CUploadTest::waitForLog(const std::string& text, std::size_t from) const {
  constexpr std::chrono::milliseconds kPause{5};
  const auto until = std::chrono::steady_clock::now() + kLongWait;
  while (log().find(text, from) == std::string::npos) {
    if (std::chrono::steady_clock::now() > until) {
      return false;
    }
    std::this_thread::sleep_for(kPause);
  }
  return true;
}

}  // namespace zt_transfers::test
