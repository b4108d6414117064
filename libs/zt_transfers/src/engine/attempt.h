#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "engine/file_spec.h"

namespace zt_transfers {

// One attempt to transfer one file. Never used twice.
using JobId = std::uint64_t;

// Written by the attempt, read by the engine when it reports. Thread: any.
struct JobProgress {
  static constexpr std::uint64_t kUnknown = ~std::uint64_t{0};

  std::atomic<std::uint64_t> bytes{0};
  std::atomic<std::uint64_t> size{kUnknown};  // of the file, once the attempt knows it
};

// What an attempt is to do.
struct StartOrder {
  JobId job = 0;
  FileRef file;
  FileSpec spec;
  bool verify = true;
  std::string proxy;
  std::shared_ptr<JobProgress> progress;
};

// How an attempt ended.
struct AttemptOutcome {
  enum class Kind {
    kDone,   // every byte is confirmed
    kRetry,  // may go better next time
    kFinal,  // would fail again
  };

  Kind kind = Kind::kFinal;
  std::string reason{};  // for the log; no secrets
  // What the server asked to wait.
  std::optional<std::chrono::milliseconds> retryAfter{};
  // The server or the network is in trouble, not this file: the group's others wait, too.
  bool sharedTrouble = false;

  static AttemptOutcome done() { return {.kind = Kind::kDone}; }
  static AttemptOutcome retry(std::string why) {
    return {.kind = Kind::kRetry, .reason = std::move(why)};
  }
  static AttemptOutcome final(std::string why) {
    return {.kind = Kind::kFinal, .reason = std::move(why)};
  }
};

// Told how attempts end. Thread: the network thread.
class IAttemptObserver {
 public:
  virtual void onAttemptDone(JobId job, const AttemptOutcome& outcome) = 0;

 protected:
  ~IAttemptObserver() = default;
};

// Carries out attempts: the seam between the engine, which decides, and the network.
// Thread: the network thread, for all operations and for the answers.
class IAttemptRunner {
 public:
  virtual ~IAttemptRunner() = default;
  // False when the attempt has ended already, with its answer given.
  virtual bool start(StartOrder order) = 0;
  // The attempt ends without an answer. An unknown job changes nothing.
  virtual void stop(JobId job) = 0;
  virtual void stopAll() = 0;
};

}  // namespace zt_transfers
