#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zantrio {

// What a crash report says of the time before the crash: the ends of the application's log files,
// joined to one text with a header before each. The sizes are bounded, so that a report stays small
// while the most recent lines are kept.
//
// Thread: any. Errors: a file that is missing, cannot be read or is no ordinary file counts as
// empty.

// The paths of the log files.
struct CrashLogFiles {
  std::string app;                 // "zt_app.log"
  std::string transfers;           // "zt_transfers.log"
  std::string secondaryTransfers;  // "zt_transfers.log.0", the one before it
  std::string browser;             // "cef_browser.log"
};

// `appDataFolder` ends with a slash.
CrashLogFiles crashLogFilesIn(const std::string& appDataFolder);

// The last min(length, maximum) bytes of `data` as valid UTF-8. What is left at the front of a
// character that the cut has split is dropped; other bytes that belong to no character become
// U+FFFD.
std::string logDataToText(std::string_view data, std::size_t maximum);

// The joined text, in valid UTF-8. The secondary transfer log is part of it only when the text of
// the first one has fewer characters than its cap has bytes.
std::string collectCrashLog(const CrashLogFiles& files);

}  // namespace zantrio
