#include "download_fixture.h"

#include <algorithm>
#include <chrono>
#include <thread>

#include "base/wide_bytes.h"
#include "zt_transfers/global_config.h"

namespace zt_transfers::test {
namespace {

constexpr std::chrono::seconds kLongWait{60};

}  // namespace

void CDownloadRecorder::onGroupStateChanged(const Group& state) {
  {
    const std::lock_guard lock(mutex_);
    completions_[state.id] += state.state == kGroupCompleted ? 1 : 0;
    groups_[state.id] = state;
    maxPercent_ = std::max(maxPercent_, state.percentTransferred);
  }
  changed_.notify_all();
}

void CDownloadRecorder::onFileStateChanged(const FileState& state) {
  {
    const std::lock_guard lock(mutex_);
    files_[state.fileId] = state;
  }
  changed_.notify_all();
}

CDownloadRecorder::Group CDownloadRecorder::group(std::int32_t id) const {
  const std::lock_guard lock(mutex_);
  const auto found = groups_.find(id);
  return found == groups_.end() ? Group{} : found->second;
}

FileState CDownloadRecorder::file(const std::string& fileId) const {
  const std::lock_guard lock(mutex_);
  const auto found = files_.find(fileId);
  return found == files_.end() ? FileState{} : found->second;
}

int CDownloadRecorder::completions(std::int32_t id) const {
  const std::lock_guard lock(mutex_);
  const auto found = completions_.find(id);
  return found == completions_.end() ? 0 : found->second;
}

float CDownloadRecorder::maxPercent() const {
  const std::lock_guard lock(mutex_);
  return maxPercent_;
}

bool CDownloadRecorder::waitForGroup(std::int32_t id,
                                     const std::function<bool(const Group&)>& accept) {
  std::unique_lock lock(mutex_);
  return changed_.wait_for(lock, kLongWait, [&] {
    const auto found = groups_.find(id);
    return found != groups_.end() && accept(found->second);
  });
}

bool CDownloadRecorder::waitForGroupState(std::int32_t id, GroupStateCode state) {
  return waitForGroup(id, [state](const Group& group) { return group.state == state; });
}

bool CDownloadRecorder::waitForFileState(const std::string& fileId, FileStateCode state) {
  std::unique_lock lock(mutex_);
  return changed_.wait_for(lock, kLongWait, [&] {
    const auto found = files_.find(fileId);
    return found != files_.end() && found->second.state == state;
  });
}

void CDownloadTest::SetUp() {
  auto* config = CZtTransfersGlobalConfig::getInstance();
  config->setAppFilesPath(widened(sandbox.folder().string()));
  config->setUserAgent("Zantrio-Test/1.0");
  target = sandbox.folder() / "target";
  std::filesystem::create_directory(target);
  manager.subscribeToEvents(&recorder);
}

void CDownloadTest::TearDown() {
  server.release();
  manager.shutdown();
  manager.subscribeToEvents(nullptr);
}

CDownloadTest::File CDownloadTest::offer(const std::string& id, const std::string& content) {
  server.put("/" + id, content);
  File file;
  file.fileId = id;
  file.path = widened(id);
  file.size = content.size();
  file.url = server.url("/" + id);
  return file;
}

std::int32_t CDownloadTest::newGroup(std::uint64_t tokenExpires) {
  return manager.createGroup("bucket", "share", "secret-token", tokenExpires,
                             widened(target.string()));
}

std::int32_t CDownloadTest::download(const std::vector<File>& files) {
  const std::int32_t group = newGroup();
  manager.queueFiles(group, files);
  manager.startup();
  return group;
}

std::int32_t CDownloadTest::downloadAll(const std::vector<File>& files) {
  const std::int32_t group = download(files);
  EXPECT_TRUE(recorder.waitForGroup(group, [](const auto& shot) {
    return shot.state == kGroupCompleted || shot.state == kGroupErrored;
  }));
  return group;
}

void CDownloadTest::configure(const std::function<void(CDownloadManager::Configuration&)>& change) {
  auto configuration = manager.getConfiguration();
  change(configuration);
  manager.setConfiguration(configuration);
}

void CDownloadTest::retryAtMost(std::uint32_t times) {
  configure([times](auto& configuration) { configuration.maxTransferRetries = times; });
}

std::string CDownloadTest::log() const {
  return contentOf(sandbox.folder() / "zt_transfers.log");
}

bool CDownloadTest::waitForLog(const std::string& text) const {
  return eventually([&] { return log().find(text) != std::string::npos; });
}

std::vector<std::string> CDownloadTest::namesThere() const {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(target)) {
    names.push_back(entry.path().lexically_relative(target).string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace zt_transfers::test
