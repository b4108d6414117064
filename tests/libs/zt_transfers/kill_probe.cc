// Uploads files until it is killed: kill_probe FOLDER URL FILES. Takes up what an earlier run left
// in FOLDER, or queues FILES files "FOLDER/file<n>" to "URL/<n>". Prints each file's number once it
// is told to be completed, and "all" at the end.
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <future>
#include <string>
#include <vector>

#include "text/wide_bytes.h"
#include "zt_transfers/global_config.h"
#include "zt_transfers/upload_manager.h"

namespace {

using zt_transfers::CUploadManager;

// One call, so that a line is there whole or not at all.
void print(const std::string& line) {
  const std::string text = line + "\n";
  if (::write(STDOUT_FILENO, text.data(), text.size()) < 0) {
    std::_Exit(3);
  }
}

class CPrinter final : public CUploadManager::ICallback {
 public:
  void onGroupStateChanged(const CUploadManager::GroupState& state) override {
    if (state.state == zt_transfers::kGroupCompleted && !told_) {
      told_ = true;
      all_.set_value();
    }
  }
  void onFileStateChanged(const zt_transfers::FileState& state) override {
    if (state.state == zt_transfers::kFileCompleted) {
      print(state.fileId);
    }
  }
  void waitForAll() { all_.get_future().wait(); }

 private:
  std::promise<void> all_;
  bool told_ = false;
};

// Paused until everything is queued, so that a queue that was cut short can be thrown away.
void queue(CUploadManager& manager, const std::string& folder, const std::string& url, int files) {
  const auto group = manager.createGroup("bucket", "message", "token", 0);
  manager.pauseGroup(group);
  std::vector<CUploadManager::FileDesc> descriptions;
  for (int number = 0; number < files; ++number) {
    CUploadManager::FileDesc file;
    file.fileId = std::to_string(number);
    file.fileURL = zt_transfers::widened("file://" + folder + "/file" + file.fileId);
    file.url = url + "/" + file.fileId;
    descriptions.push_back(file);
  }
  manager.queueFiles(group, descriptions);
  manager.markQueue(group);
  manager.resumeGroup(group);
}

// False when there is nothing to be taken up.
bool takeUp(CUploadManager& manager) {
  std::vector<CUploadManager::GroupState> groups;
  manager.fetchGroupsInfo(groups);
  bool found = false;
  for (const auto& group : groups) {
    if (group.marked) {
      manager.resumeGroup(group.id);
      found = true;
    } else {
      manager.cancelGroup(group.id);
    }
  }
  return found;
}

void run(const std::string& folder, const std::string& url, int files) {
  zt_transfers::CZtTransfersGlobalConfig::getInstance()->setAppFilesPath(
      zt_transfers::widened(folder));
  CPrinter printer;
  CUploadManager manager;
  manager.subscribeToEvents(&printer);
  manager.startup();
  if (!takeUp(manager)) {
    queue(manager, folder, url, files);
  }
  printer.waitForAll();
  manager.shutdown();
  print("all");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    return 2;
  }
  try {
    run(argv[1], argv[2], std::atoi(argv[3]));
    return 0;
  } catch (const std::exception& exception) {
    std::fprintf(stderr, "kill_probe: %s\n", exception.what());
    return 1;
  }
}
