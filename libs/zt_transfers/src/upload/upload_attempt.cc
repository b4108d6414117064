#include "upload/upload_attempt.h"

#include <utility>

#include "base/file_url.h"
#include "base/url_parts.h"
#include "upload/upload_verdict.h"

namespace zt_transfers {

CUploadAttempt::CUploadAttempt(const Dependencies& dependencies, StartOrder order,
                               IListener& listener)
    : dependencies_(dependencies), order_(std::move(order)), listener_(listener) {
  dependencies_.slots.addFile();
}

void CUploadAttempt::begin() {
  const auto path = pathOfFileUrl(order_.spec.location);
  if (!path) {
    finish(AttemptOutcome::final("its source is no file: URL of this machine",
                                 failure::kSourceMissing));
    return;
  }
  if (originOf(order_.spec.url).empty()) {
    finish(AttemptOutcome::final("it has no http or https URL to be sent to", failure::kBadUrl));
    return;
  }
  path_ = *path;
  sendWhole();
}

void CUploadAttempt::sendWhole() {
  CFileRequest::Order whole;
  whole.source = {
      .path = path_,
      .hash = order_.verify && dependencies_.servers.givesDigests(order_.spec.url),
  };
  whole.url = order_.spec.url;
  whole.headers = order_.spec.headers;
  whole.proxy = order_.proxy;
  whole_ = std::make_unique<CFileRequest>(dependencies_.upload, std::move(whole), *this);
  whole_->begin();
}

bool CUploadAttempt::isMultipart(std::uint64_t size) const {
  // A session proves that its server takes multipart uploads, whatever was learnt before.
  return size != 0 && !multipartRefused_ &&
         (hasSession() ||
          (size >= order_.parts.from && dependencies_.servers.mayTakeMultipart(order_.spec.url)));
}

bool CUploadAttempt::onRequestOpened(CFileRequest& /*request*/, const SourceVersion& version) {
  order_.progress->size = version.size;
  version_ = version;
  if (isMultipart(version.size)) {
    dependencies_.upload.loop.retire(std::move(whole_));
    multipart_ = std::make_unique<CMultipartUpload>(dependencies_.upload, order_, path_, version,
                                                    dependencies_.slots, *this);
    multipart_->begin();
    return false;
  }
  order_.progress->bytes = 0;
  if (hasSession() && !multipartRefused_) {
    onSessionAbandoned(order_.resume.upload());
    order_.progress->setResume({});
  }
  return true;
}

void CUploadAttempt::onRequestAnswered(CFileRequest& request, const HttpResponse& response) {
  const AttemptOutcome outcome = judgeUpload(response, request.size(), request.md5(),
                                             dependencies_.upload.loop.clock().secondsSince1970());
  if (outcome.kind != AttemptOutcome::Kind::kDone) {
    finish(outcome);
    return;
  }
  if (multipartRefused_) {
    dependencies_.servers.noteNoMultipart(order_.spec.url);
  }
  const auto stored = storedDigest(response);
  dependencies_.servers.noteDigest(order_.spec.url, stored.has_value());
  if (order_.verify && stored && request.md5().empty()) {
    compareWith(*stored);
  } else {
    finish(outcome);
  }
}

// The file was sent without being hashed. Hashing fails if its version is not the one that was
// sent.
void CUploadAttempt::compareWith(const std::string& stored) {
  digest_ = std::make_unique<CSourceDigest>(
      dependencies_.upload, ReadRequest{.path = path_, .version = version_},
      [this, stored](const CSourceDigest::Result& result) {
        if (result.failure) {
          AttemptOutcome outcome = *result.failure;
          outcome.kind = AttemptOutcome::Kind::kRetry;
          outcome.reason = "what the server has cannot be compared with it: " + outcome.reason;
          finish(outcome);
        } else {
          finish(result.md5 == stored ? AttemptOutcome::done() : otherContent(stored, result.md5));
        }
      });
}

void CUploadAttempt::onMultipartUnsupported(bool permanent) {
  dependencies_.upload.log.information("The server takes no multipart uploads for " +
                                       loggableUrl(order_.spec.url) + "; it is sent as a whole");
  if (permanent) {
    dependencies_.servers.noteNoMultipart(order_.spec.url);
  }
  multipartRefused_ = true;
  dependencies_.upload.loop.retire(std::move(multipart_));
  sendWhole();
}

void CUploadAttempt::abandon() {
  if (!multipart_) {
    return;
  }
  if (auto initiation = multipart_->takeInitiation()) {
    dependencies_.aborter.abortOnceBegun(std::move(initiation), multipart_->session());
  }
}

void CUploadAttempt::onSlotFree() {
  if (multipart_) {
    multipart_->onSlotFree();
  }
}

}  // namespace zt_transfers
