#pragma once

#include "platform/linux/crash/crash_messages.h"

namespace zantrio {

// Writes the report of a crash into the folder of the reports: what happened to which thread, the
// stacks of all threads, and the ends of the logs. The crashed process must still be there. What is
// known first is written first, so that a report that breaks off is still of use.
//
// Errors: std::system_error when there can be no report. Stacks that cannot be read are said to be
// so in the report.
void writeCrashReport(const CrashReportFacts& facts, const CrashNotice& notice);

}  // namespace zantrio
