#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "base/clock.h"
#include "engine/failure.h"
#include "engine/file_spec.h"

namespace zt_transfers {

// Whether one server can be asked for more. CCircuitBreaker::open and ::close are the functions
// that change the state:
//
//   kClosed ──── trouble ────► kResting ── the rest is over ──► kProbing
//      ▲                          ▲                                │ │
//      │                          └────────── the probe fails ─────┘ │
//      └───────────────────────── the probe succeeds ────────────────┘
//
// A probe is one attempt like any other. After a probe that succeeded, every success lets one more
// attempt run beside the others, so that a server that has just come back is not overrun.
//
// Thread: none of its own; the engine guards it.
class CCircuitBreaker {
 public:
  enum class State { kClosed, kResting, kProbing };
  // Failures of so many different files in a row, each of which can be the file's own, are the
  // server's.
  static constexpr std::size_t kSuspects = 3;

  // Kept by an attempt from its beginning to its end.
  struct Ticket {
    std::uint32_t epoch = 0;
    std::uint64_t successes = 0;
  };
  // Retries that a file has used up by failures that turned out to be the server's.
  struct Refund {
    FileRef file;
    std::uint32_t retries = 0;
  };

  State state() const { return state_; }
  // While it is not kClosed: the next probe may begin then.
  TimePoint nextProbeAt() const { return until_; }
  // The trouble of a server that is not kClosed.
  const Failure& trouble() const { return trouble_; }
  // Rests in a row, without a success in between.
  std::uint32_t outages() const { return outages_; }

  // `running`: the attempts at this server that are under way.
  bool admits(std::size_t running, TimePoint now) const;
  Ticket begin(TimePoint now);
  // An attempt has ended. A probe that ended without a success makes room for the next one.
  void end(Ticket ticket);
  // The server has served an attempt.
  void succeed(Ticket ticket, std::size_t running);
  // An attempt has been moving bytes for a while. Less than a success: the server can still refuse
  // what it was sent.
  void prove(Ticket ticket, std::size_t running);

  // False when the attempt was begun before the last rest: then it says nothing new.
  bool current(Ticket ticket) const { return ticket.epoch == epoch_; }
  // Whether other attempts have succeeded since this one began.
  bool othersSucceed(Ticket ticket) const { return successes_ != ticket.successes; }
  void open(Failure trouble, TimePoint until);
  // The next probe may begin at once.
  void endRest();

  // Notes a failure that can be the file's own or the server's.
  void noteFailure(FileRef file, TimePoint now);
  // Others have succeeded between the file's failures, again and again: they are its own.
  bool failsAlone(FileRef file, TimePoint now) const;
  // Such a failure, which is not known to be the file's own, at a server that is kClosed. True when
  // it is the server's. Otherwise `counts` states whether it uses up a retry.
  bool suspect(FileRef file, bool counts);
  std::vector<Refund> takeRefunds();

 private:
  using Key = std::pair<std::int32_t, std::uint32_t>;  // of a file
  struct Failed {
    TimePoint last{};
    std::uint32_t epoch = 0;
    std::uint64_t successes = 0;  // successes_ at that time
    std::uint32_t alone = 0;      // how much speaks for its own fault
  };

  void close(std::size_t running);

  State state_ = State::kClosed;
  std::uint32_t epoch_ = 0;  // rests so far
  std::uint64_t successes_ = 0;
  std::uint32_t outages_ = 0;
  TimePoint until_{};
  Failure trouble_;
  std::size_t limit_ = 0;                  // of attempts; 0: none
  std::map<Key, std::uint32_t> suspects_;  // the files in a row, and the retries they used up
  std::map<Key, Failed> failed_;
};

}  // namespace zt_transfers
