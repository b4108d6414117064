#include "upload/upload_attempt.h"

#include <limits>
#include <utility>

#include "base/file_url.h"
#include "base/url_parts.h"
#include "upload/upload_verdict.h"

namespace zt_transfers {
namespace {

constexpr std::uint64_t kNever = std::numeric_limits<std::uint64_t>::max();

}  // namespace

CUploadAttempt::CUploadAttempt(const Shared& shared, StartOrder order, IListener& listener)
    : shared_(shared), order_(std::move(order)), listener_(listener) {
  shared_.slots.addFile();
}

void CUploadAttempt::begin() {
  const auto path = pathOfFileUrl(order_.spec.place);
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
  const bool inParts = shared_.support.mayHave(order_.spec.url);
  sendWhole(hasSession() ? 0 : inParts ? order_.parts.from : kNever);
}

void CUploadAttempt::sendWhole(std::uint64_t statOnlyFrom) {
  CFileRequest::Order whole;
  whole.source = {.path = path_,
                  .hash = order_.verify && shared_.digestTags.expectedOf(order_.spec.url),
                  .statOnlyFrom = statOnlyFrom};
  whole.url = order_.spec.url;
  whole.headers = order_.spec.headers;
  whole.proxy = order_.proxy;
  whole_ = std::make_unique<CFileRequest>(shared_.dependencies, std::move(whole), *this);
  whole_->begin();
}

bool CUploadAttempt::goesInParts(std::uint64_t size) const {
  // A session shows that its own place takes parts, whatever the server said of others.
  return size != 0 && !refusedParts_ &&
         (hasSession() || (size >= order_.parts.from && shared_.support.mayHave(order_.spec.url)));
}

bool CUploadAttempt::onRequestOpened(CFileRequest& request, const SourceVersion& version) {
  order_.progress->size = version.size;
  version_ = version;
  if (goesInParts(version.size)) {
    whole_.reset();
    parts_ =
        std::make_unique<CMultipartUpload>(shared_.dependencies, order_, path_, version, *this);
    parts_->begin();
    return false;
  }
  order_.progress->bytes = 0;
  const bool statOnly = request.statOnly(version.size);
  if (hasSession() && statOnly) {
    onSessionAbandoned(order_.resume.upload());
    order_.progress->setResume({});
  }
  if (statOnly) {
    sendWhole(kNever);
  }
  return !statOnly;
}

void CUploadAttempt::onRequestAnswered(CFileRequest& request, const HttpResponse& response) {
  const AttemptOutcome outcome = judgeUpload(response, request.size(), request.md5(),
                                             shared_.dependencies.loop.clock().secondsSince1970());
  if (outcome.kind != AttemptOutcome::Kind::kDone) {
    finish(outcome);
    return;
  }
  if (refusedParts_) {
    shared_.support.hasNot(order_.spec.url);
  }
  const auto stored = storedDigest(response);
  shared_.digestTags.learn(order_.spec.url, stored.has_value());
  if (order_.verify && stored && request.md5().empty()) {
    whole_.reset();
    compareWith(*stored);
  } else {
    finish(outcome);
  }
}

// The file was sent without being hashed; it must still be the one that was sent.
void CUploadAttempt::compareWith(const std::string& stored) {
  digest_ = std::make_unique<CSourceDigest>(
      shared_.dependencies, ReadRequest{.path = path_, .version = version_},
      [this, stored](const CSourceDigest::Result& result) {
        if (result.problem) {
          finish(AttemptOutcome::retry(
              "what the server has cannot be compared with it: " + result.problem->reason,
              result.problem->code));
        } else {
          finish(result.md5 == stored ? AttemptOutcome::done() : otherContent(stored, result.md5));
        }
      });
}

void CUploadAttempt::onRequestFailed(CFileRequest& /*request*/, const Trouble& trouble) {
  finish(AttemptOutcome::final(trouble.reason, trouble.code));
}

void CUploadAttempt::onMultipartUnsupported(bool permanent) {
  shared_.dependencies.log.information("The server takes no uploads in parts for " +
                                       loggableUrl(order_.spec.url) + "; it is sent as a whole");
  if (permanent) {
    shared_.support.hasNot(order_.spec.url);
  }
  refusedParts_ = true;
  parts_.reset();
  sendWhole(kNever);
}

void CUploadAttempt::leave() {
  if (parts_) {
    const UploadSession session = parts_->session();
    if (auto initiation = parts_->takeInitiation()) {
      shared_.aborter.abortOnceBegun(std::move(initiation), session);
    }
  }
}

void CUploadAttempt::onSlotFree() {
  if (parts_) {
    parts_->onSlotFree();
  }
}

void CUploadAttempt::finish(const AttemptOutcome& outcome) {
  // A copy, as the receiver may destroy this attempt.
  const AttemptOutcome copy = outcome;
  listener_.onEnded(order_.attemptId, copy);
}

}  // namespace zt_transfers
