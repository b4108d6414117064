#include "upload/multipart_upload.h"

#include <exception>
#include <set>
#include <utility>

#include "base/url_parts.h"
#include "upload/multipart_request.h"
#include "upload/multipart_verdict.h"
#include "upload/part_plan.h"
#include "upload/source_version.h"

namespace zt_transfers {
namespace {

// So often at most a session is kept on disk; what is newer the server knows.
constexpr std::chrono::seconds kNoteInterval{1};

}  // namespace

CMultipartUpload::CMultipartUpload(const UploadDependencies& dependencies, const StartOrder& order,
                                   std::string path, const SourceVersion& version,
                                   IListener& listener)
    : dependencies_(dependencies),
      order_(order),
      path_(std::move(path)),
      version_(version),
      listener_(listener),
      sender_(dependencies, order, listener, *this) {}

void CMultipartUpload::begin() {
  if (order_.resume.begun() && order_.resume.isUpload()) {
    takeUp(order_.resume.upload());
  } else {
    startAnew();
  }
}

void CMultipartUpload::takeUp(UploadSession session) {
  // The page may have renewed the URL's query, but not meant another object.
  const bool samePlace = loggableUrl(session.url) == loggableUrl(order_.spec.url);
  if (!samePlace || !session.source.sameContent(version_)) {
    listener_.onSessionAbandoned(session);
    startAnew();
    return;
  }
  const bool trusted = session.source.touched == version_.touched;
  session_ = std::move(session);
  session_.url = order_.spec.url;
  session_.headers = order_.spec.headers;
  session_.source = version_;
  recovery_ = std::make_unique<CMultipartRecovery>(
      dependencies_,
      CMultipartRecovery::Order{
          .session = session_, .path = path_, .trusted = trusted, .proxy = order_.proxy},
      [this](const CMultipartRecovery::Found& found) { onRecovered(found); });
  try {
    recovery_->begin();
  } catch (const std::exception& error) {
    end(AttemptOutcome::final(error.what(), failure::kBadRequest));
  }
}

void CMultipartUpload::startAnew() {
  dropSession();
  session_.url = order_.spec.url;
  session_.headers = order_.spec.headers;
  session_.partSize = partSizeFor(version_.size, order_.parts.size);
  session_.source = version_;
  call(initiation_, initiationRequest(session_, order_.proxy), &CMultipartUpload::onInitiated);
}

// Ends the attempt when there is no such request.
void CMultipartUpload::call(std::unique_ptr<CStoreRequest>& slot, CStoreRequest::Request request,
                            OnResponse onResponse) {
  try {
    slot = std::make_unique<CStoreRequest>(
        dependencies_.loop, dependencies_.log, std::move(request),
        [this, &slot, onResponse](const HttpResponse& response) {
          // Kept to the end of this, and out of the way of the next
          // one.
          const std::unique_ptr<CStoreRequest> finished = std::move(slot);
          (this->*onResponse)(response);
        });
  } catch (const std::exception& error) {
    end(AttemptOutcome::final(error.what(), failure::kBadRequest));
  }
}

void CMultipartUpload::onInitiated(const HttpResponse& response) {
  Initiation initiation = judgeInitiation(response, now());
  if (initiation.outcome) {
    end(*initiation.outcome);
    return;
  }
  if (initiation.unsupported) {
    listener_.onMultipartUnsupported(initiation.permanent);
    return;
  }
  session_.uploadId = std::move(initiation.uploadId);
  order_.progress->setResume(session_);
  if (!dependencies_.observer.onAttemptCheckpoint(order_.attemptId)) {
    // Who stopped this may not know of the session.
    listener_.onSessionAbandoned(session_);
    dropSession();
    return;
  }
  flushThen(&CMultipartUpload::send);
}

// Goes on once the session is on disk, if the source is still the same.
void CMultipartUpload::flushThen(void (CMultipartUpload::*next)()) {
  noted_ = dependencies_.loop.clock().now();
  dependencies_.pool.post([this, next, &loop = dependencies_.loop,
                           &observer = dependencies_.observer, attemptId = order_.attemptId,
                           alive = std::weak_ptr<bool>(alive_), path = path_, version = version_] {
    observer.keepDurably({attemptId});
    loop.post([this, next, alive, change = changeSince(version, path)] {
      if (alive.expired()) {
        return;
      }
      if (change) {
        failSource(*change);
      } else {
        (this->*next)();
      }
    });
  });
}

void CMultipartUpload::onRecovered(const CMultipartRecovery::Found& found) {
  using What = CMultipartRecovery::Found::What;
  // Kept to the end of this; what was found is not part of it.
  const std::unique_ptr<CMultipartRecovery> finished = std::move(recovery_);
  switch (found.what) {
    case What::kParts:
      session_.parts = found.parts;
      bytesSent_ = session_.bytesSent();
      order_.progress->setResume(session_);
      onBytesMoved();
      send();
      break;
    case What::kGone:
      onGone();
      break;
    case What::kFailed:
      fail(found.response, judgeFailure(found.response, now()));
      break;
    case What::kSource:
      failSource(found.problem);
      break;
  }
}

void CMultipartUpload::onGone() {
  if (session_.completing) {
    lookUp();
    return;
  }
  dependencies_.log.information("The server has forgotten the upload in parts to " +
                                loggableUrl(session_.url) + "; it begins again");
  startAnew();
}

void CMultipartUpload::send() {
  std::set<std::uint32_t> missing;
  for (std::uint32_t number = 1; number <= session_.partCount(); ++number) {
    missing.insert(missing.end(), number);
  }
  for (const SentPart& part : session_.parts) {
    missing.erase(part.number);
  }
  sender_.begin(session_, path_, std::move(missing));
}

void CMultipartUpload::onPartSent(const SentPart& part) {
  add(part);
  progressed_ = true;
  const TimePoint time = dependencies_.loop.clock().now();
  if (time - noted_ >= kNoteInterval) {
    noted_ = time;
    dependencies_.observer.onAttemptCheckpoint(order_.attemptId);
  }
}

void CMultipartUpload::add(const SentPart& part) {
  session_.parts.push_back(part);
  bytesSent_ += session_.spanOf(part.number).length();
  order_.progress->changeResume(
      [&part](TransferResume& resume) { resume.upload().parts.push_back(part); });
}

void CMultipartUpload::onBytesMoved() {
  order_.progress->bytes = bytesSent_ + sender_.bytesUnderWay();
}

void CMultipartUpload::onAllPartsSent() {
  session_.completing = true;
  order_.progress->setResume(session_);
  flushThen(&CMultipartUpload::complete);
}

void CMultipartUpload::onSendingEnded(const CPartSender::End& ending) {
  using Why = CPartSender::End::Why;
  if (ending.why == Why::kSource || ending.why == Why::kRefused) {
    listener_.onSessionAbandoned(session_);
  }
  if (ending.why == Why::kLater || ending.why == Why::kRenew) {
    onBytesMoved();
  } else {
    dropSession();
  }
  end(ending.outcome);
}

void CMultipartUpload::complete() {
  askedToComplete_ = true;
  call(call_, completionRequest(session_, order_.proxy), &CMultipartUpload::onCompleted);
}

void CMultipartUpload::onCompleted(const HttpResponse& response) {
  if (saysUploadIsGone(response)) {
    onGone();
    return;
  }
  const auto tag = order_.verify ? compositeTagOf(session_.parts) : std::nullopt;
  const CompletionVerdict verdict = judgeCompletion(response, tag, now());
  switch (verdict.kind) {
    case Completion::kDone:
      end(verdict.outcome);
      break;
    case Completion::kOtherContent:
      dropSession();
      end(verdict.outcome);
      break;
    case Completion::kFailed:
      fail(response, verdict.outcome);
      break;
  }
}

void CMultipartUpload::lookUp() {
  call(call_, lookUpRequest(session_, order_.proxy), &CMultipartUpload::onLookedUp);
}

void CMultipartUpload::onLookedUp(const HttpResponse& response) {
  if (showsObject(response, version_.size, compositeTagOf(session_.parts))) {
    order_.progress->bytes = version_.size;
    end(AttemptOutcome::done());
    return;
  }
  const AttemptOutcome outcome = judgeFailure(response, now());
  if (outcome.kind == AttemptOutcome::Kind::kRetry || asksForAuthority(response)) {
    end(outcome);
  } else if (askedToComplete_) {
    // Beginning again here and now could go on for ever.
    dropSession();
    end(AttemptOutcome::retry("the server has forgotten the upload in parts, and has no such file",
                              failure::kServerTrouble));
  } else {
    startAnew();
  }
}

void CMultipartUpload::dropSession() {
  session_ = {};
  bytesSent_ = 0;
  order_.progress->setResume({});
  order_.progress->bytes = 0;
}

void CMultipartUpload::fail(const HttpResponse& response, const AttemptOutcome& outcome) {
  const bool forGood = outcome.kind == AttemptOutcome::Kind::kFinal && response.code == CURLE_OK &&
                       !asksForAuthority(response);
  if (forGood) {
    listener_.onSessionAbandoned(session_);
    dropSession();
  }
  end(outcome);
}

void CMultipartUpload::failSource(const Trouble& trouble) {
  const AttemptOutcome outcome = AttemptOutcome::final(trouble.reason, trouble.code);
  listener_.onSessionAbandoned(session_);
  dropSession();
  end(outcome);
}

// A session that was begun anew is no progress yet: the next one could be lost as well.
bool CMultipartUpload::wentOn() const {
  return progressed_ && order_.resume.begun() && order_.resume.isUpload() &&
         order_.resume.upload().uploadId == session_.uploadId;
}

void CMultipartUpload::end(AttemptOutcome outcome) {
  outcome.progressed = wentOn();
  listener_.onPartsEnded(outcome);
}

}  // namespace zt_transfers
