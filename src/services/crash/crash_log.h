#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zantrio {

// The logs in a crash report: the tails of the application's log files, joined into one text with a
// header before each. The sizes are limited, so that a report stays small and has the most recent
// lines.
//
// Thread: any. Errors: a file that is missing, unreadable or not a regular file counts as empty.

// The paths of the log files.
struct CrashLogFiles {
  std::string app;                 // "zt_app.log"
  std::string transfers;           // "zt_transfers.log"
  std::string secondaryTransfers;  // "zt_transfers.log.0", the one before it
  std::string browser;             // "cef_browser.log"
};

// `appDataFolder` ends with a slash.
CrashLogFiles crashLogFilesIn(const std::string& appDataFolder);

// The last min(length, maximum) bytes of `data` as valid UTF-8. The rest of a character that the
// cut has split is dropped; other bytes that belong to no character become U+FFFD.
std::string logDataToText(std::string_view data, std::size_t maximum);

// The joined text, in valid UTF-8, with secrets masked (see shown_text::maskSecrets). It includes
// the secondary transfer log only when the text of the first one has fewer characters than its cap
// has bytes.
std::string collectCrashLog(const CrashLogFiles& files);

}  // namespace zantrio
