#include "upload/part_sender.h"

#include <algorithm>
#include <utility>

#include "upload/multipart_request.h"
#include "upload/multipart_verdict.h"
#include "upload/upload_verdict.h"

namespace zt_transfers {

CPartSender::~CPartSender() {
  while (slotsTaken_ != 0) {
    releaseSlot();
  }
}

void CPartSender::begin(const UploadSession& session, std::string path,
                        std::set<std::uint32_t> numbers) {
  session_ = &session;
  path_ = std::move(path);
  waiting_ = std::move(numbers);
  reschedule();
}

std::uint64_t CPartSender::bytesUnderWay() const {
  std::uint64_t bytes = 0;
  for (const auto& [number, request] : active_) {
    bytes += request->sent();
  }
  return bytes;
}

void CPartSender::fill() {
  while (session_ != nullptr && !failure_ && !waiting_.empty() && active_.size() < kMaxConcurrent) {
    // The first part uses the file's own slot.
    if (!active_.empty()) {
      if (!slots_.takeExtra()) {
        return;
      }
      ++slotsTaken_;
    }
    start(*waiting_.begin());
  }
}

void CPartSender::start(std::uint32_t number) {
  waiting_.erase(number);
  CFileRequest::Order part;
  part.source = {.path = path_,
                 .hash = order_.verify,
                 .version = session_->source,
                 .span = session_->spanOf(number)};
  part.url = partUrl(*session_, number);
  part.headers = partHeaders(*session_);
  part.proxy = order_.proxy;
  auto request = std::make_unique<CFileRequest>(dependencies_, std::move(part), *this);
  request->begin();
  active_.emplace(number, std::move(request));
}

void CPartSender::reschedule() {
  if (active_.empty() && failure_) {
    cutOff(End::Why::kLater, *failure_);
  } else if (active_.empty() && waiting_.empty()) {
    session_ = nullptr;
    listener_.onAllPartsSent();
  } else {
    fill();
  }
}

void CPartSender::releaseSlot() {
  if (slotsTaken_ != 0) {
    --slotsTaken_;
    slots_.giveBackExtra();
  }
}

void CPartSender::retire(Active::iterator part) {
  dependencies_.loop.retire(std::move(part->second));
  active_.erase(part);
  releaseSlot();
}

CPartSender::Active::iterator CPartSender::find(const CFileRequest& request) {
  return std::find_if(active_.begin(), active_.end(),
                      [&request](const auto& entry) { return entry.second.get() == &request; });
}

void CPartSender::onRequestAnswered(CFileRequest& request, const HttpResponse& response) {
  const auto part = find(request);
  const std::uint32_t number = part->first;
  const std::string& md5 = request.md5();
  const AttemptOutcome outcome =
      judgeUpload(response, request.size(), md5, dependencies_.loop.clock().secondsSince1970());
  retire(part);
  if (outcome.kind != AttemptOutcome::Kind::kDone) {
    onRefused(number, response, outcome);
    return;
  }
  std::string etag(response.header("etag"));
  if (etag.empty() && !md5.empty()) {
    etag = '"' + md5 + '"';
  }
  listener_.onPartSent({number, std::move(etag), md5});
  listener_.onBytesMoved();
  reschedule();
}

void CPartSender::onRefused(std::uint32_t number, const HttpResponse& response,
                            AttemptOutcome outcome) {
  outcome.reason = "part " + std::to_string(number) + ": " + outcome.reason;
  if (saysUploadIsGone(response)) {
    cutOff(End::Why::kGone, AttemptOutcome::retry(outcome.reason, failure::kServerTrouble));
  } else if (outcome.kind == AttemptOutcome::Kind::kRetry) {
    waiting_.insert(number);
    noteFailure(outcome);
    listener_.onBytesMoved();
    reschedule();
  } else {
    const bool renew = response.code != CURLE_OK || asksForAuthority(response);
    cutOff(renew ? End::Why::kRenew : End::Why::kRefused, outcome);
  }
}

void CPartSender::onRequestFailed(CFileRequest& request, const AttemptOutcome& outcome) {
  const bool later = outcome.kind == AttemptOutcome::Kind::kRetry;
  retire(find(request));
  cutOff(later ? End::Why::kLater : End::Why::kSource, outcome);
}

// The first failure is reported, with the longest wait of all.
void CPartSender::noteFailure(const AttemptOutcome& outcome) {
  if (!failure_) {
    failure_ = outcome;
    return;
  }
  failure_->retryBudget = std::min(failure_->retryBudget, outcome.retryBudget);
  if (failure_->scope == AttemptOutcome::Scope::kFile) {
    failure_->scope = outcome.scope;
  }
  failure_->suspectsOrigin = failure_->suspectsOrigin || outcome.suspectsOrigin;
  failure_->retryAfter = std::max(failure_->retryAfter, outcome.retryAfter);
}

void CPartSender::cutOff(End::Why why, const AttemptOutcome& outcome) {
  session_ = nullptr;
  for (; !active_.empty(); active_.erase(active_.begin())) {
    releaseSlot();
  }
  listener_.onSendingEnded({why, outcome});
}

}  // namespace zt_transfers
