#include "download/file_turns.h"

#include <algorithm>

namespace zt_transfers {

bool CFileTurns::enter(StartOrder& order) {
  Turn& turn = turns_[keyOf(order.file)];
  if (turn.user != kNobody) {
    turn.next = std::move(order);
    return false;
  }
  turn.user = order.attemptId;
  return true;
}

std::shared_ptr<CPartialFile> CFileTurns::takeKept(FileRef file) {
  return std::move(turns_.at(keyOf(file)).kept);
}

void CFileTurns::end(FileRef file, AttemptId attemptId, std::shared_ptr<CPartialFile> left,
                     bool failed) {
  const auto turn = turns_.find(keyOf(file));
  if (turn == turns_.end() || turn->second.user != attemptId) {
    drop(std::move(left));  // the runner was stopped meanwhile
    return;
  }
  turn->second.user = kNobody;
  if (left && failed && left->open()) {
    close(turn, std::move(left), true);
    return;
  }
  turn->second.kept = std::move(left);
  turn->second.since = dependencies_.clock.now();
  if (auto next = std::exchange(turn->second.next, std::nullopt)) {
    turn->second.user = next->attemptId;
    dependencies_.begin(std::move(*next));
  } else if (!turn->second.kept) {
    turns_.erase(turn);
  } else {
    keepFew();
  }
}

void CFileTurns::cancel(AttemptId attemptId) {
  for (auto& [key, turn] : turns_) {
    if (turn.next && turn.next->attemptId == attemptId) {
      turn.next.reset();
      return;
    }
  }
}

std::shared_ptr<CPartialFile> CFileTurns::takeOrphan(const Orphan& orphan) {
  const auto turn = std::find_if(turns_.begin(), turns_.end(), [&](const auto& entry) {
    return entry.second.kept && entry.second.kept->isOrphan(orphan);
  });
  if (turn == turns_.end()) {
    return nullptr;
  }
  std::shared_ptr<CPartialFile> file = std::move(turn->second.kept);
  turns_.erase(turn);
  return file;
}

std::optional<TimePoint> CFileTurns::tick() {
  for (;;) {
    const auto turn = oldest(true);
    if (turn == turns_.end()) {
      return std::nullopt;
    }
    const TimePoint due = turn->second.since + kOpenFor;
    if (due > dependencies_.clock.now()) {
      return due;
    }
    close(turn, std::move(turn->second.kept), false);
  }
}

// Lets the pool close the file, which blocks.
void CFileTurns::close(Turns::iterator turn, std::shared_ptr<CPartialFile> file, bool failed) {
  turn->second.user = kCloser;
  const FileRef ref{turn->first.first, turn->first.second};
  dependencies_.pool.post([this, ref, failed, file = std::move(file)] {
    file->park(failed ? CPartialFile::Unsynced::kLeave : CPartialFile::Unsynced::kSync);
    dependencies_.loop.post([this, ref, file] { end(ref, kCloser, file, false); });
  });
}

CFileTurns::Turns::iterator CFileTurns::oldest(bool open) {
  auto found = turns_.end();
  for (auto turn = turns_.begin(); turn != turns_.end(); ++turn) {
    const bool matches = turn->second.kept && (!open || turn->second.keepsOpen());
    if (matches && (found == turns_.end() || turn->second.since < found->second.since)) {
      found = turn;
    }
  }
  return found;
}

void CFileTurns::keepFew() {
  const auto keptOpen = std::count_if(turns_.begin(), turns_.end(),
                                      [](const auto& entry) { return entry.second.keepsOpen(); });
  if (static_cast<std::size_t>(keptOpen) > kMaxOpen) {
    const auto turn = oldest(true);
    close(turn, std::move(turn->second.kept), false);
  }
  if (turns_.size() > kMaxKept) {
    const auto turn = oldest(false);
    if (turn != turns_.end()) {
      drop(std::move(turn->second.kept));
      turns_.erase(turn);
    }
  }
}

void CFileTurns::drop(std::shared_ptr<CPartialFile> file) {
  dependencies_.pool.post([file = std::move(file)] {});
}

}  // namespace zt_transfers
