#pragma once

#include <cstdint>

#include "zt_transfers/transfer_records.h"

namespace zt_transfers {

// Where a file stands, inside the library. CTransferGroup::changePhase is the one function that
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
// for kRemoved, which is final. Shutdown puts kRunning and kBackingOff back to kWaiting. A
// failed or completed file that is queued again waits again.
enum class FilePhase : std::uint8_t {
  kWaiting,     // to be begun, or to be begun again
  kRunning,     // an attempt is under way
  kBackingOff,  // an attempt failed, the next one is due later
  kPaused,      // was begun when its group was paused
  kCompleted,   // the other side has confirmed every byte
  kFailed,      // nothing more is tried until the group is resumed
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

// As the program is told. Between two attempts a file is still being transferred.
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
