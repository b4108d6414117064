#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "engine/transfer_engine.h"
#include "store/queue_cache.h"

namespace zt_transfers::test {
// The test acts as the network thread: it asks for work and reports outcomes.
class CEngineFixture : public ::testing::Test {
 protected:
  class CHandClock : public IClock {
   public:
    TimePoint now() const override { return now_; }
    std::int64_t secondsSince1970() const override { return unix_; }
    void pass(Duration time) {
      now_ += time;
      unix_ += std::chrono::duration_cast<std::chrono::seconds>(time).count();
    }

   private:
    TimePoint now_{std::chrono::hours(100)};
    std::int64_t unix_ = 1'000'000;
  };

  class CTextLog : public ILog {
   public:
    void write(Priority, std::string_view line) noexcept override { text_ += line; }
    const std::string& text() const { return text_; }

   private:
    std::string text_;
  };

  std::int32_t groupOf(int files, std::uint64_t expires = 0, const std::string& host = "a") {
    GroupIdentity identity;
    identity.bucketId = "bucket";
    identity.tokenExpires = expires;
    const std::int32_t id = engine.createGroup(identity);
    add(id, files, host);
    engine.setMarked(id, true);
    return id;
  }
  std::int32_t groupAt(const std::string& host, int files) { return groupOf(files, 0, host); }
  void add(std::int32_t group, int files, const std::string& host) {
    std::vector<FileSpec> specs;
    for (int count = 0; count < files; ++count) {
      specs.push_back(specOf(group, added_[group]++, host));
    }
    engine.queueFiles(group, specs);
  }
  static FileSpec specOf(std::int32_t group, int number, const std::string& host = "a") {
    FileSpec spec;
    spec.fileId = std::to_string(group) + "-" + std::to_string(number);
    spec.url = "http://" + host + "/" + spec.fileId;
    spec.size = 100;
    return spec;
  }
  using Answer = std::function<AttemptOutcome(const StartOrder&)>;
  // Answers every attempt at once until nothing is left to do or the time is over. Returns the
  // number of attempts.
  int serve(Duration time, const Answer& answer) {
    int attempts = 0;
    for (const TimePoint end = clock.now() + time;;) {
      events<FileState>();
      const TransferWork work = engine.takeWork();
      for (const StartOrder& order : work.starts) {
        engine.onAttemptDone(order.attemptId, answer(order));
        ++attempts;
      }
      if (!work.starts.empty()) {
        continue;
      }
      if (!work.nextDue || *work.nextDue > end) {
        return attempts;
      }
      clock.pass(std::max(*work.nextDue - clock.now(), Duration::zero()));
    }
  }
  std::vector<StartOrder> starts() { return engine.takeWork().starts; }
  std::vector<std::string> idsOf(const std::vector<StartOrder>& orders) {
    std::vector<std::string> ids;
    for (const StartOrder& order : orders) {
      ids.push_back(order.spec.fileId);
    }
    return ids;
  }
  void concurrent(std::uint32_t max, std::uint32_t retries = 5) {
    engine.setSettings({.maxConcurrent = max, .maxRetries = retries, .proxy = {}});
  }
  template <typename Event>
  std::vector<Event> events() {
    std::vector<Event> chosen;
    for (const TransferEvent& event : queue.take(Duration::zero())) {
      if (const auto* one = std::get_if<Event>(&event)) {
        chosen.push_back(*one);
      }
    }
    return chosen;
  }
  using Stops = std::vector<std::pair<AttemptId, bool>>;  // and whether to discard their files
  static Stops stopsOf(const TransferWork& work) {
    Stops stops;
    for (const AttemptStop& stop : work.stops) {
      stops.emplace_back(stop.attemptId, stop.discard);
    }
    return stops;
  }
  GroupStateCode stateOf(std::int32_t id) {
    return static_cast<GroupStateCode>(engine.group(id)->state);
  }

  CHandClock clock;
  CQueueCache store;
  CEventQueue queue;
  CTextLog log;
  CTransferEngine engine{
      {.activity = "upload",
       .statsSources = false,
       .backoff = {.base = std::chrono::seconds(1), .cap = std::chrono::seconds(8)}},
      {.clock = clock, .store = store, .events = queue, .log = log}};

 private:
  std::map<std::int32_t, int> added_;
};

}  // namespace zt_transfers::test
