#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <thread>

#include "upload_fixture.h"

namespace zt_transfers::test {
namespace {

class UploadLife : public CUploadTest {};

TEST_F(UploadLife, ShutsDownQuicklyWithAServerThatStalls) {
  server.planForAll(fault::stall());
  upload({describe("one", patternOf(5'000'000)), describe("two", "x")});
  ASSERT_TRUE(server.waitForRequests(2));
  const auto begin = std::chrono::steady_clock::now();
  manager.shutdown();
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
}

TEST_F(UploadLife, CanBeStartedAndShutDownTwiceAndWithoutTheOther) {
  manager.shutdown();
  manager.startup();
  manager.startup();
  const auto group = upload({describe("file", "x")});
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupCompleted));
  manager.shutdown();
  manager.shutdown();
}

TEST_F(UploadLife, SurvivesBeingStoppedAtAnyMoment) {
  const auto file = describe("file", patternOf(100'000));
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(8);
  int rounds = 0;
  for (; rounds < 300 && std::chrono::steady_clock::now() < end; ++rounds) {
    CUploadManager stopped;
    CRecorder reports;
    stopped.subscribeToEvents(&reports);
    const auto group = stopped.createGroup("b", "t", "", 0);
    stopped.startup();
    for (int number = 0; number < 6; ++number) {
      auto copy = file;
      copy.fileId += std::to_string(number);
      copy.url = server.url("/f" + std::to_string(number));
      stopped.queueFiles(group, {copy});
    }
    if (rounds % 3 == 0) {
      // Waits for another point of the work each time.
      reports.waitForGroup(group, [&](const auto& shot) {
        return shot.bytesTransferred >= 100'000U * static_cast<unsigned>(rounds % 6);
      });
    }
    if (rounds % 4 == 1) {
      stopped.pauseGroup(group);
    }
    if (rounds % 4 != 2) {
      stopped.shutdown();
    }
    stopped.subscribeToEvents(nullptr);
  }
  EXPECT_GE(rounds, 20);
}

// Calls back into what the test wants to happen meanwhile.
class CCallbackProbe final : public CUploadManager::ICallback {
 public:
  std::function<void()> onAny;
  std::atomic<bool> inside{false};
  std::atomic<int> calls{0};

  void onGroupStateChanged(const CUploadManager::GroupState&) override { call(); }
  void onFileStateChanged(const FileState&) override { call(); }

 private:
  void call() {
    inside = true;
    ++calls;
    if (onAny) {
      onAny();
    }
    inside = false;
  }
};

TEST_F(UploadLife, MayBeCalledAndUnsubscribedFromWithinACallback) {
  CCallbackProbe probe;
  const auto group = newGroup();
  std::atomic<bool> done{false};
  probe.onAny = [&] {
    CUploadManager::GroupState shot;
    manager.getGroupState(group, shot);
    manager.pauseGroup(group);
    manager.subscribeToEvents(nullptr);
    done = true;
  };
  manager.subscribeToEvents(&probe);
  manager.startup();
  while (!done) {
    std::this_thread::yield();
  }
  manager.shutdown();
  EXPECT_EQ(probe.calls, 1);
}

TEST_F(UploadLife, KeepsTransferringWhileACallbackIsSlow) {
  CCallbackProbe probe;
  std::promise<bool> allSent;
  std::once_flag first;
  probe.onAny = [&] {
    std::call_once(first, [&] { allSent.set_value(server.waitForRequests(20)); });
  };
  manager.subscribeToEvents(&probe);
  std::vector<CUploadManager::FileDesc> files;
  for (int number = 0; number < 20; ++number) {
    files.push_back(describe("file" + std::to_string(number), "x"));
  }
  upload(files);
  // The first callback returns only once all files were sent.
  EXPECT_TRUE(allSent.get_future().get());
  manager.subscribeToEvents(nullptr);
}

TEST_F(UploadLife, WorksWithoutALog) {
  auto file = describe("file", "x");
  std::filesystem::create_directory(sandbox.folder() / "zt_transfers.log");
  const auto group = upload({file});
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupCompleted));
}

}  // namespace
}  // namespace zt_transfers::test
