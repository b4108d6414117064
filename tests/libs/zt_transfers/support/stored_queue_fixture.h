#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <future>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "sandbox.h"
#include "store/stored_queue.h"

namespace zt_transfers::test {

// Keeps what is logged. Thread: any.
class CTextLog : public ILog {
 public:
  void write(Priority, std::string_view message) noexcept override {
    const std::lock_guard lock(mutex_);
    text_.append(message).append("\n");
  }
  std::string text() const {
    const std::lock_guard lock(mutex_);
    return text_;
  }

 private:
  mutable std::mutex mutex_;
  std::string text_;  // guarded by mutex_
};

// A queue in a folder of its own. The test plays the engine.
class CStoredQueueTest : public ::testing::Test {
 protected:
  static StoredGroup group(std::int32_t id) {
    StoredGroup group;
    group.identity = {.id = id,
                      .bucketId = "bucket" + std::to_string(id),
                      .bucketType = "message",
                      .token = "token",
                      .tokenExpires = 5,
                      .folder = L"/home/\u00fc\u20ac"};
    return group;
  }
  static FileSpec spec(const std::string& fileId) {
    FileSpec spec;
    spec.fileId = fileId;
    spec.location = "place of " + fileId;
    spec.url = "http://host/" + fileId;
    spec.headers = {{"Name", "value"}};
    spec.size = 10;
    return spec;
  }

  std::unique_ptr<CStoredQueue> made() {
    return std::make_unique<CStoredQueue>(
        "zt-store-test", log,
        CStoredQueue::Listener{.arrived =
                                   [this](std::int32_t) {
                                     {
                                       const std::lock_guard lock(mutex);
                                       ++arrivals;
                                     }
                                     arrived.notify_all();
                                   },
                               .found = [this](auto stored) { late.set_value(std::move(stored)); }},
        CQueueWriter::Timing{.gather = std::chrono::milliseconds(1),
                             .firstRetry = std::chrono::milliseconds(1),
                             .lastRetry = std::chrono::milliseconds(8),
                             .patience = patience});
  }
  // A queue that is open; what it found is in `found`.
  std::unique_ptr<CStoredQueue> opened() {
    auto queue = made();
    found = queue->open(path());
    return queue;
  }
  // The description, brought from disk if need be; nothing when it cannot be read.
  std::optional<FileSpec> fetched(IQueueStore& store, FileRef file) {
    for (;;) {
      const int before = arrivalsSoFar();
      if (auto spec = store.spec(file)) {
        return spec;
      }
      if (!store.load(file)) {
        return std::nullopt;
      }
      std::unique_lock lock(mutex);
      if (!arrived.wait_for(lock, std::chrono::seconds(60), [&] { return arrivals != before; })) {
        ADD_FAILURE() << "what was asked for does not come";
        return std::nullopt;
      }
    }
  }
  int arrivalsSoFar() {
    const std::lock_guard lock(mutex);
    return arrivals;
  }

  std::string path() const { return (sandbox.folder() / "queue.db").string(); }

  CSandbox sandbox;
  CTextLog log;
  RestoredQueue found;
  std::promise<RestoredQueue> late;  // found after `open`
  std::chrono::milliseconds patience{0};
  std::mutex mutex;
  std::condition_variable arrived;
  int arrivals = 0;  // guarded by mutex
};

}  // namespace zt_transfers::test
