// Transfers files until it is killed: kill_probe FOLDER URL UPLOADS DOWNLOADS [BYTES TOKEN].
// Uploads the files "FOLDER/file<n>" to "URL/up/<n>", and downloads "URL/down/<n>" to
// "FOLDER/target/file<n>"; of the latter FOLDER/downloads has a line each, with size and MD5 ("-":
// not told). If FOLDER has upload_urls or download_urls, these are the files' URLs, one a line.
// Takes up what an earlier run left in FOLDER. Prints "up/<n>" or "down/<n>" once that is told to
// be completed, and "all" at the end. With BYTES all files are multipart uploads with parts of this
// size, with TOKEN as the local service wants it.
#include <unistd.h>

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <future>
#include <string>
#include <vector>

#include "base/wide_bytes.h"
#include "zt_transfers/download_manager.h"
#include "zt_transfers/global_config.h"
#include "zt_transfers/upload_manager.h"

namespace {

namespace fs = std::filesystem;
using zt_transfers::CDownloadManager;
using zt_transfers::CUploadManager;
using zt_transfers::widened;

struct Task {
  fs::path folder;
  std::string url;
  int uploads = 0;
  int downloads = 0;
  std::uint64_t partSize = 0;  // 0: some files are multipart uploads
  std::string token{};
};

// One call, so that a line is there whole or not at all.
void print(const std::string& line) {
  const std::string text = line + "\n";
  if (::write(STDOUT_FILENO, text.data(), text.size()) < 0) {
    std::_Exit(3);
  }
}

// The URL of a file, by its line in `urls` if that could be opened.
std::string urlOf(const Task& task, const std::string& fileId, std::ifstream& urls) {
  std::string url;
  return std::getline(urls, url) ? url : task.url + "/" + fileId;
}

void queue(CUploadManager& manager, const Task& task) {
  const auto group = manager.createGroup("bucket", "message", "token", 0);
  manager.pauseGroup(group);
  std::vector<CUploadManager::FileDesc> files;
  std::ifstream urls(task.folder / "upload_urls");
  for (int number = 0; number < task.uploads; ++number) {
    CUploadManager::FileDesc file;
    file.fileId = "up/" + std::to_string(number);
    file.fileURL = widened("file://" + (task.folder / "file").string() + std::to_string(number));
    file.url = urlOf(task, file.fileId, urls);
    if (!task.token.empty()) {
      file.headers = {{"X-Zantrio-Token", task.token}};
    }
    files.push_back(file);
  }
  manager.queueFiles(group, files);
  manager.markQueue(group);
}

void queue(CDownloadManager& manager, const Task& task) {
  const auto group = manager.createGroup("bucket", "message", "token", 0,
                                         widened((task.folder / "target").string()));
  manager.pauseGroup(group);
  std::vector<CDownloadManager::FileDownloadDetails> files;
  std::ifstream lines(task.folder / "downloads");
  std::ifstream urls(task.folder / "download_urls");
  for (int number = 0; number < task.downloads; ++number) {
    CDownloadManager::FileDownloadDetails file;
    file.fileId = "down/" + std::to_string(number);
    file.path = widened("file" + std::to_string(number));
    file.url = urlOf(task, file.fileId, urls);
    lines >> file.size >> file.md5Digest;
    file.md5Digest = file.md5Digest == "-" ? "" : file.md5Digest;
    files.push_back(file);
  }
  manager.queueFiles(group, files);
}

// Queues the files, or takes up what is there. Until all of them are on disk nothing is begun, so
// that a queue that was cut short can be thrown away; a note tells that they are. True when
// everything is done already, which is not told a second time.
template <typename Manager>
bool prepare(Manager& manager, const Task& task, const fs::path& note) {
  std::vector<typename Manager::GroupState> groups;
  manager.startup();
  if (!fs::exists(note)) {
    manager.fetchGroupsInfo(groups);
    for (const auto& group : groups) {
      manager.cancelGroup(group.id);
    }
    queue(manager, task);
    manager.shutdown();  // writes it
    std::ofstream(note) << "queued";
    manager.startup();
  }
  manager.fetchGroupsInfo(groups);
  bool all = true;
  for (const auto& group : groups) {
    all = all && group.state == zt_transfers::kGroupCompleted;
    manager.resumeGroup(group.id);
  }
  return all;
}

template <typename Manager>
class CWorker final : public Manager::ICallback {
 public:
  void begin(const Task& task, const std::string& note) {
    auto configuration = manager_.getConfiguration();
    configuration.minMultipartSize = task.partSize != 0 ? 1 : 2'000'000;
    configuration.partSize = task.partSize != 0 ? task.partSize : 1'000'000;
    manager_.setConfiguration(configuration);
    manager_.subscribeToEvents(this);
    if (prepare(manager_, task, task.folder / note)) {
      notifyAll();
    }
  }
  void waitForAll() { all_.get_future().wait(); }
  void end() {
    manager_.shutdown();
    manager_.subscribeToEvents(nullptr);
  }

 private:
  void onGroupStateChanged(const typename Manager::GroupState& state) override {
    if (state.state == zt_transfers::kGroupCompleted) {
      notifyAll();
    }
  }
  void notifyAll() {
    if (!reported_.exchange(true)) {
      all_.set_value();
    }
  }
  void onFileStateChanged(const zt_transfers::FileState& state) override {
    if (state.state == zt_transfers::kFileCompleted) {
      print(state.fileId);
    }
  }

  std::promise<void> all_;
  std::atomic<bool> reported_ = false;
  Manager manager_;
};

void run(const Task& task) {
  zt_transfers::CZtTransfersGlobalConfig::getInstance()->setAppFilesPath(
      widened(task.folder.string()));
  CWorker<CUploadManager> uploads;
  CWorker<CDownloadManager> downloads;
  if (task.uploads != 0) {
    uploads.begin(task, "uploads_queued");
  }
  if (task.downloads != 0) {
    downloads.begin(task, "downloads_queued");
    downloads.waitForAll();
  }
  if (task.uploads != 0) {
    uploads.waitForAll();
  }
  uploads.end();
  downloads.end();
  print("all");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 5 && argc != 7) {
    return 2;
  }
  try {
    Task task{argv[1], argv[2], std::atoi(argv[3]), std::atoi(argv[4])};
    if (argc == 7) {
      task.partSize = std::strtoull(argv[5], nullptr, 10);
      task.token = argv[6];
    }
    run(task);
    return 0;
  } catch (const std::exception& exception) {
    std::fprintf(stderr, "kill_probe: %s\n", exception.what());
    return 1;
  }
}
