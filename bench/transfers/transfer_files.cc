// Uploads or downloads files with the transfer library, as one group:
//
//   transfer_files up|down URL FOLDER STATE_FOLDER CONNECTIONS < LIST
//
// Every line of the list is a file's size, MD5 and path, separated by blanks; the path is relative
// to the URL and the folder. Exits with 0 when the library has reported the group COMPLETED.
#include <condition_variable>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <iostream>
#include <mutex>
#include <stdexcept>
#include <string>
#include <vector>

#include "zt_transfers/download_manager.h"
#include "zt_transfers/global_config.h"
#include "zt_transfers/upload_manager.h"

namespace {

struct Entry {
  std::uint64_t size = 0;
  std::string md5;
  std::string path;
};

struct Job {
  std::string url;
  std::string folder;
  std::uint32_t connections = 0;
  std::vector<Entry> entries;
};

// The library expects paths with one byte per character.
std::wstring widen(const std::string& bytes) {
  return {bytes.begin(), bytes.end()};
}

// Waits for the end of the manager's only group.
class GroupEnd {
 public:
  void tell(std::int32_t state) {
    const std::lock_guard lock(mutex_);
    state_ = state;
    changed_.notify_one();
  }

  void wait() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return isOver(); });
    if (state_ != zt_transfers::kGroupCompleted) {
      throw std::runtime_error("the group failed; see zt_transfers.log");
    }
  }

 private:
  bool isOver() const {
    return state_ == zt_transfers::kGroupCompleted || state_ == zt_transfers::kGroupErrored;
  }

  std::mutex mutex_;
  std::condition_variable changed_;
  std::int32_t state_ = zt_transfers::kGroupIdle;  // guarded by mutex_
};

template <class Manager>
class Listener final : public Manager::ICallback {
 public:
  void onGroupStateChanged(const typename Manager::GroupState& state) override {
    end.tell(state.state);
  }
  void onFileStateChanged(const zt_transfers::FileState& /*state*/) override {}

  GroupEnd end;
};

template <class Manager>
void configure(Manager& manager, std::uint32_t connections) {
  auto configuration = manager.getConfiguration();
  configuration.maxConcurrentTransfers = connections;
  manager.setConfiguration(configuration);
}

void upload(const Job& job) {
  Listener<zt_transfers::CUploadManager> listener;
  zt_transfers::CUploadManager manager;
  configure(manager, job.connections);
  manager.subscribeToEvents(&listener);
  manager.startup();
  std::vector<zt_transfers::CUploadManager::FileDesc> files;
  files.reserve(job.entries.size());
  for (const Entry& entry : job.entries) {
    files.push_back(
        {entry.path, widen("file://" + job.folder + "/" + entry.path), job.url + entry.path, {}});
  }
  const std::int32_t group = manager.createGroup("bench", "message", "", 0);
  manager.queueFiles(group, files);
  manager.markQueue(group);
  listener.end.wait();
  manager.shutdown();
}

void download(const Job& job) {
  Listener<zt_transfers::CDownloadManager> listener;
  zt_transfers::CDownloadManager manager;
  configure(manager, job.connections);
  manager.subscribeToEvents(&listener);
  manager.startup();
  std::vector<zt_transfers::CDownloadManager::FileDownloadDetails> files;
  files.reserve(job.entries.size());
  for (const Entry& entry : job.entries) {
    zt_transfers::CDownloadManager::FileDownloadDetails details;
    details.fileId = entry.path;
    details.path = widen(entry.path);
    details.size = entry.size;
    details.md5Digest = entry.md5;
    details.url = job.url + entry.path;
    files.push_back(details);
  }
  const std::int32_t group = manager.createGroup("bench", "message", "", 0, widen(job.folder));
  manager.queueFiles(group, files);
  listener.end.wait();
  manager.shutdown();
}

std::vector<Entry> readList() {
  std::ios::sync_with_stdio(false);
  std::vector<Entry> entries;
  Entry entry;
  while (std::cin >> entry.size >> entry.md5 && std::getline(std::cin >> std::ws, entry.path)) {
    entries.push_back(entry);
  }
  return entries;
}

void run(const std::string& direction, const Job& job, const std::string& stateFolder) {
  auto* const config = zt_transfers::CZtTransfersGlobalConfig::getInstance();
  config->setRestEndPointUrl(job.url);
  config->setUserAgent("transfer_files");
  config->setAppFilesPath(widen(stateFolder));
  if (direction == "up") {
    upload(job);
  } else {
    download(job);
  }
}

}  // namespace

int main(int argc, char** argv) {
  try {
    if (argc != 6) {
      throw std::runtime_error("usage: up|down URL FOLDER STATE_FOLDER CONNECTIONS < LIST");
    }
    const Job job{argv[2], argv[3], static_cast<std::uint32_t>(std::stoul(argv[5])), readList()};
    run(argv[1], job, argv[4]);
    return 0;
  } catch (const std::exception& exception) {
    std::fprintf(stderr, "transfer_files: %s\n", exception.what());
    return 1;
  }
}
