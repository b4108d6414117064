#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "engine/attempt.h"
#include "http/http_response.h"

namespace zt_transfers {

// Judge the responses to the requests of a multipart upload, except for those of its parts. `now`
// in seconds since 1970.

// The result of an initiation: one of `uploadId`, `unsupported` and `outcome` is set.
struct Initiation {
  std::string uploadId{};
  bool unsupported = false;                 // the server does not take multipart uploads
  bool permanent = false;                   // and the status says so explicitly
  std::optional<AttemptOutcome> outcome{};  // the failure
};
Initiation judgeInitiation(const HttpResponse& response, std::int64_t now);

// The outcome of any response but a success.
AttemptOutcome judgeFailure(const HttpResponse& response, std::int64_t now);

// Whether the server does not know the upload.
bool saysUploadIsGone(const HttpResponse& response);
// Whether the upload can be resumed once the page has renewed its authorisation.
bool asksForAuthority(const HttpResponse& response);

// An abort has also succeeded when there was nothing to abort.
AttemptOutcome judgeAbort(const HttpResponse& response, std::int64_t now);

// The result of a completion request. `tag`: the ETag that the object must have, if its own can be
// compared.
enum class Completion {
  kDone,
  kOtherContent,  // the object exists with other content
  kFailed,        // see `outcome`
};
struct CompletionVerdict {
  Completion kind = Completion::kFailed;
  AttemptOutcome outcome{};
};
CompletionVerdict judgeCompletion(const HttpResponse& response,
                                  const std::optional<std::string>& tag, std::int64_t now);

// Whether the response to HEAD shows the completed object.
bool showsObject(const HttpResponse& response, std::uint64_t size,
                 const std::optional<std::string>& tag);

}  // namespace zt_transfers
