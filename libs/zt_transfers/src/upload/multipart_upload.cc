#include "upload/multipart_upload.h"

#include <exception>
#include <set>
#include <stdexcept>
#include <utility>

#include "base/url_parts.h"
#include "upload/multipart_request.h"
#include "upload/multipart_verdict.h"

namespace zt_transfers {
namespace {

// The session is persisted at most this often; what is newer, the server knows.
constexpr std::chrono::seconds kSaveInterval{1};

}  // namespace

CMultipartUpload::CMultipartUpload(const UploadDependencies& dependencies, const StartOrder& order,
                                   std::string path, const SourceVersion& version,
                                   CRequestSlots& slots, IListener& listener)
    : dependencies_(dependencies),
      order_(order),
      path_(std::move(path)),
      version_(version),
      listener_(listener),
      sender_(dependencies, order, slots, *this) {}

void CMultipartUpload::begin() {
  const bool hasSession = order_.resume.begun() && order_.resume.isUpload();
  if (hasSession && resumes(order_.resume.upload())) {
    enter(State::kRecovering);
    return;
  }
  if (hasSession) {
    listener_.onSessionAbandoned(order_.resume.upload());
  }
  enter(State::kInitiating);
}

void CMultipartUpload::enter(State next) {
  if (!mayFollow(state_, next)) {
    throw std::logic_error("a multipart upload's state " + std::to_string(int(state_)) +
                           " cannot become " + std::to_string(int(next)));
  }
  state_ = next;
  switch (next) {
    case State::kRecovering:
      recover();
      break;
    case State::kInitiating:
      initiate();
      break;
    case State::kSavingSession:
    case State::kSavingCompletion:
      saveSession();
      break;
    case State::kSending:
      sendMissing();
      break;
    case State::kCompleting:
      askedToComplete_ = true;
      request(completionRequest(session_, order_.proxy), &CMultipartUpload::onCompleted);
      break;
    case State::kLookingUp:
      request(lookUpRequest(session_, order_.proxy), &CMultipartUpload::onLookedUp);
      break;
    case State::kNew:
    case State::kEnded:
      break;
  }
}

// Ends the attempt when the request cannot be sent.
void CMultipartUpload::request(CTextRequest::Request request,
                               void (CMultipartUpload::*onResponse)(const HttpResponse&)) {
  try {
    request_ =
        std::make_unique<CTextRequest>(dependencies_.loop, dependencies_.log, std::move(request),
                                       [this, onResponse](const HttpResponse& response) {
                                         dependencies_.loop.retire(std::move(request_));
                                         (this->*onResponse)(response);
                                       });
  } catch (const std::exception& error) {
    end(AttemptOutcome::final(error.what(), failure::kBadRequest));
  }
}

// The page may have renewed the URL's query, but not changed the object that it names.
bool CMultipartUpload::resumes(const UploadSession& session) const {
  return loggableUrl(session.url) == loggableUrl(order_.spec.url) &&
         session.source.maybeSameContent(version_);
}

void CMultipartUpload::recover() {
  session_ = order_.resume.upload();
  const bool trusted = session_.source == version_;
  session_.url = order_.spec.url;
  session_.headers = order_.spec.headers;
  sameFile_ = session_.source.sameContent(version_);
  session_.source = version_;
  recovery_ = std::make_unique<CMultipartRecovery>(
      dependencies_,
      CMultipartRecovery::Order{
          .session = session_, .path = path_, .trusted = trusted, .proxy = order_.proxy},
      [this](const CMultipartRecovery::Found& found) {
        dependencies_.loop.retire(std::move(recovery_));
        onRecovered(found);
      });
  try {
    recovery_->begin();
  } catch (const std::exception& error) {
    end(AttemptOutcome::final(error.what(), failure::kBadRequest));
  }
}

void CMultipartUpload::onRecovered(const CMultipartRecovery::Found& found) {
  using What = CMultipartRecovery::Found::What;
  switch (found.what) {
    case What::kParts:
      session_.parts = found.parts;
      bytesSent_ = session_.bytesSent();
      order_.progress->setResume(session_);
      onBytesMoved();
      enter(State::kSending);
      break;
    case What::kGone:
      onUploadGone();
      break;
    case What::kFailed:
      fail(found.response, judgeFailure(found.response, now()));
      break;
    case What::kSource:
      failSource(found.failure);
      break;
  }
}

void CMultipartUpload::onUploadGone() {
  // The parts of another file do not say whether this one was completed.
  if (session_.completing && (sameFile_ || askedToComplete_)) {
    enter(State::kLookingUp);
    return;
  }
  dependencies_.log.information("The server has forgotten the multipart upload to " +
                                loggableUrl(session_.url) + "; it begins again");
  enter(State::kInitiating);
}

void CMultipartUpload::initiate() {
  dropSession();
  session_.url = order_.spec.url;
  session_.headers = order_.spec.headers;
  session_.partSize = partSizeFor(version_.size, order_.parts.size);
  session_.source = version_;
  request(initiationRequest(session_, order_.proxy), &CMultipartUpload::onInitiated);
}

void CMultipartUpload::onInitiated(const HttpResponse& response) {
  Initiation initiation = judgeInitiation(response, now());
  if (initiation.outcome) {
    end(*initiation.outcome);
    return;
  }
  if (initiation.unsupported) {
    enter(State::kEnded);
    listener_.onMultipartUnsupported(initiation.permanent);
    return;
  }
  session_.uploadId = std::move(initiation.uploadId);
  order_.progress->setResume(session_);
  if (dependencies_.observer.onAttemptCheckpoint(order_.attemptId)) {
    enter(State::kSavingSession);
  } else {
    // The attempt was stopped, and the engine may not know of the session.
    abandonSession();
    enter(State::kEnded);
  }
}

void CMultipartUpload::saveSession() {
  savedAt_ = dependencies_.loop.clock().now();
  flush_ = std::make_unique<CSessionFlush>(dependencies_, order_.attemptId, path_, version_,
                                           [this](const auto& change) { onSessionSaved(change); });
}

void CMultipartUpload::onSessionSaved(const std::optional<AttemptOutcome>& change) {
  dependencies_.loop.retire(std::move(flush_));
  if (change) {
    failSource(*change);
  } else {
    enter(state_ == State::kSavingSession ? State::kSending : State::kCompleting);
  }
}

void CMultipartUpload::sendMissing() {
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
  session_.parts.push_back(part);
  bytesSent_ += session_.spanOf(part.number).length();
  order_.progress->changeResume(
      [&part](TransferResume& resume) { resume.upload().parts.push_back(part); });
  partSent_ = true;
  const TimePoint time = dependencies_.loop.clock().now();
  if (time - savedAt_ >= kSaveInterval) {
    savedAt_ = time;
    dependencies_.observer.onAttemptCheckpoint(order_.attemptId);
  }
}

void CMultipartUpload::onBytesMoved() {
  order_.progress->bytes = bytesSent_ + sender_.bytesUnderWay();
}

void CMultipartUpload::onAllPartsSent() {
  session_.completing = true;
  order_.progress->setResume(session_);
  enter(State::kSavingCompletion);
}

void CMultipartUpload::onSendingEnded(const CPartSender::End& ending) {
  using Why = CPartSender::End::Why;
  switch (ending.why) {
    case Why::kSource:
    case Why::kRefused:
      abandonSession();
      break;
    case Why::kGone:
      dropSession();
      break;
    case Why::kRenew:
    case Why::kLater:
      onBytesMoved();
      break;
  }
  end(ending.outcome);
}

void CMultipartUpload::onCompleted(const HttpResponse& response) {
  if (saysUploadIsGone(response)) {
    onUploadGone();
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
    // Another upload in the same attempt could end in the same way, without end.
    dropSession();
    end(AttemptOutcome::retry("the server has forgotten the multipart upload, and has no such file",
                              failure::kServerTrouble));
  } else {
    enter(State::kInitiating);
  }
}

std::unique_ptr<CTextRequest> CMultipartUpload::takeInitiation() {
  return state_ == State::kInitiating ? std::move(request_) : nullptr;
}

void CMultipartUpload::abandonSession() {
  listener_.onSessionAbandoned(session_);
  dropSession();
}

void CMultipartUpload::dropSession() {
  session_ = {};
  bytesSent_ = 0;
  order_.progress->setResume({});
  order_.progress->bytes = 0;
}

void CMultipartUpload::fail(const HttpResponse& response, const AttemptOutcome& outcome) {
  const bool permanent = outcome.kind == AttemptOutcome::Kind::kFinal &&
                         response.code == CURLE_OK && !asksForAuthority(response);
  if (permanent) {
    abandonSession();
  }
  end(outcome);
}

void CMultipartUpload::failSource(const AttemptOutcome& outcome) {
  if (outcome.kind == AttemptOutcome::Kind::kFinal) {
    abandonSession();
  }
  end(outcome);
}

// A session that was begun in this attempt does not count: the next one could be lost as well.
bool CMultipartUpload::madeProgress() const {
  return partSent_ && order_.resume.begun() && order_.resume.isUpload() &&
         order_.resume.upload().uploadId == session_.uploadId;
}

void CMultipartUpload::end(AttemptOutcome outcome) {
  outcome.progressed = madeProgress();
  enter(State::kEnded);
  listener_.onMultipartEnded(outcome);
}

}  // namespace zt_transfers
