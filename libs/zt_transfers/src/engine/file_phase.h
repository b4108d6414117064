#pragma once

#include <cstdint>

#include "zt_transfers/transfer_records.h"

namespace zt_transfers {

// The phase of a file inside the library. CTransferGroup::changePhase is the one function that
// changes it:
//
//                  ┌─────────── retry is due ───────────┐
//                  ▼                                    │
//   queued ──► kWaiting ──► kRunning ──► kBackingOff ───┘
//               ▲  ▲           │  │           │
//        resume │  │ resume    │  ├───────────┴──► kPaused   (group paused)
//               │  └─ kPaused  │  │
//               │              │  └──► kCompleted            (confirmed)
//               └── kFailed ◄──┘                             (gave up)
//
// Waiting files can fail without running (their token has expired), and every phase can be left
// for kRemoved, which is final. Shutdown changes kRunning and kBackingOff to kWaiting. A failed or
// completed file that is queued again changes to kWaiting.
enum class FilePhase : std::uint8_t {
  kWaiting,     // for its first or next attempt
  kRunning,     // an attempt is under way
  kBackingOff,  // an attempt failed, the next one is due later
  kPaused,      // had been begun when its group was paused
  kCompleted,   // every byte was confirmed
  kFailed,      // no attempt is made until the group is resumed
  kRemoved,     // dequeued
};

inline constexpr int kFilePhaseCount = 7;

constexpr bool mayFollow(FilePhase from, FilePhase to) {
  switch (to) {
    case FilePhase::kWaiting:
      return from != FilePhase::kRemoved && from != FilePhase::kWaiting;
    case FilePhase::kRunning:
      return from == FilePhase::kWaiting;
    case FilePhase::kBackingOff:
    case FilePhase::kCompleted:
      return from == FilePhase::kRunning;
    case FilePhase::kPaused:
      return from == FilePhase::kRunning || from == FilePhase::kBackingOff;
    case FilePhase::kFailed:
      return from == FilePhase::kRunning || from == FilePhase::kWaiting;
    case FilePhase::kRemoved:
      return from != FilePhase::kRemoved;
  }
  return false;
}

// The state that is reported to the program. Between two attempts a file counts as transferring.
constexpr FileStateCode publicState(FilePhase phase) {
  switch (phase) {
    case FilePhase::kRunning:
    case FilePhase::kBackingOff:
      return kFileTransferring;
    case FilePhase::kCompleted:
      return kFileCompleted;
    case FilePhase::kFailed:
      return kFileErrored;
    case FilePhase::kPaused:
      return kFilePaused;
    default:
      return kFileWaiting;
  }
}

}  // namespace zt_transfers
