#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "engine/attempt.h"
#include "http/http_response.h"

namespace zt_transfers {

// Judges the answers of a server to what concerns an upload in parts as a whole. `now` in seconds
// since 1970.

// The answer to the beginning of one: exactly one of these holds.
struct Initiation {
  std::string uploadId{};                   // it was begun
  bool unsupported = false;                 // the server does not do that
  bool permanent = false;                   // and says so in as many words
  std::optional<AttemptOutcome> outcome{};  // it failed
};
Initiation judgeInitiation(const HttpResponse& response, std::int64_t now);

// What follows from an answer that is no success.
AttemptOutcome judgeFailure(const HttpResponse& response, std::int64_t now);

// Whether the server knows nothing (any more) of the upload.
bool saysUploadIsGone(const HttpResponse& response);
// Whether it may be gone on with once the page has renewed what authorises it.
bool asksForAuthority(const HttpResponse& response);

// The answer to an abort: done also when there was nothing to be aborted.
AttemptOutcome judgeAbort(const HttpResponse& response, std::int64_t now);

// The answer to the request to put the parts together. `tag`: what the object must have, if it has
// a tag that can be compared.
enum class Completion {
  kDone,
  kOtherContent,  // there is an object now, but it is another one
  kFailed,        // see the outcome
};
struct CompletionVerdict {
  Completion kind = Completion::kFailed;
  AttemptOutcome outcome{};
};
CompletionVerdict judgeCompletion(const HttpResponse& response,
                                  const std::optional<std::string>& tag, std::int64_t now);

// Whether the answer to HEAD shows the object that was put together before.
bool showsObject(const HttpResponse& response, std::uint64_t size,
                 const std::optional<std::string>& tag);

}  // namespace zt_transfers
