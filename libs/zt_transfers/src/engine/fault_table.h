#pragma once

#include <curl/curl.h>

#include <string>
#include <string_view>

#include "engine/attempt.h"

namespace zt_transfers {

// From each fault to its consequence. Final is only what the user or the page must change. A fault
// that the table does not list is tried again.

// The part that a file of this machine plays in a transfer.
enum class FileRole {
  kTarget,  // of a download
  kSource,  // of an upload
};

// `error`: errno of a failed system call on the file or its folder; `reason`: for people.
AttemptOutcome outcomeOfErrno(int error, FileRole role, const std::string& reason);

// The folder that held the file is not there: its disk is probably not mounted.
AttemptOutcome outcomeOfMissingFolder(FileRole role, const std::string& reason);

// A server's status other than a success, or a success with an error document. `errorCode`: of its
// error document, empty without one.
AttemptOutcome outcomeOfStatus(long status, std::string_view errorCode, const std::string& reason);

// A proxy's answer to the request for a tunnel.
AttemptOutcome outcomeOfProxyStatus(long status, const std::string& reason);

// No complete response came; `code` is libcurl's.
AttemptOutcome outcomeOfTransport(CURLcode code, const std::string& reason);

// The exchange made no progress for too long.
AttemptOutcome outcomeOfStall();

}  // namespace zt_transfers
