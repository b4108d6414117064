#pragma once

#include "platform/linux/crash/crash_messages.h"

namespace zantrio {

// Writes a crash report into the report folder: the signal and thread, all stacks, and the log
// tails. The crashed process must still exist. The most certain facts are written first, so that a
// truncated report is still useful.
//
// Errors: std::system_error if the report cannot be written. Unreadable stacks are noted in the
// report.
void writeCrashReport(const CrashReportFacts& facts, const CrashNotice& notice);

}  // namespace zantrio
