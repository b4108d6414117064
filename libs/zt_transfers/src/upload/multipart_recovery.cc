#include "upload/multipart_recovery.h"

#include <algorithm>
#include <map>
#include <utility>

#include "http/etag.h"
#include "upload/multipart_request.h"
#include "upload/multipart_verdict.h"

namespace zt_transfers {

void CMultipartRecovery::list(std::uint32_t after) {
  after_ = after;
  call_ = std::make_unique<CStoreRequest>(
      dependencies_.loop, dependencies_.log, listRequest(order_.session, after, order_.proxy),
      [this](const HttpResponse& response) { onListed(response); });
}

void CMultipartRecovery::onListed(const HttpResponse& response) {
  // Kept to the end of this, and out of the way of the next one.
  const std::unique_ptr<CStoreRequest> finished = std::move(call_);
  if (saysUploadIsGone(response)) {
    finish({.what = Found::What::kGone});
    return;
  }
  const bool answered = response.code == CURLE_OK && response.status == 200;
  const auto page = answered ? partsPageOf(response.body) : std::nullopt;
  if (!page) {
    onNoList(response);
    return;
  }
  // A server that does not know of pages gives the first one again.
  const bool isNew = !page->parts.empty() && page->parts.front().number > after_;
  if (isNew) {
    listed_.insert(listed_.end(), page->parts.begin(), page->parts.end());
  }
  const bool goesOn = isNew && page->next >= page->parts.back().number;
  if (goesOn && listed_.size() < UploadSession::kMaxParts) {
    list(page->next);
  } else {
    compare();
  }
}

// A server that gives no list is believed what it confirmed for each part.
void CMultipartRecovery::onNoList(const HttpResponse& response) {
  const AttemptOutcome outcome =
      judgeFailure(response, dependencies_.loop.clock().secondsSince1970());
  const bool later = outcome.kind == AttemptOutcome::Kind::kRetry && response.status != 501;
  if (response.code != CURLE_OK || later || asksForAuthority(response)) {
    finish({.what = Found::What::kFailed, .response = response});
    return;
  }
  listed_.clear();
  for (const SentPart& part : order_.session.parts) {
    listed_.push_back({part.number, order_.session.spanOf(part.number).length(), part.etag});
  }
  compare();
}

void CMultipartRecovery::compare() {
  const UploadSession& session = order_.session;
  std::map<std::uint32_t, const SentPart*> notes;
  for (const SentPart& part : session.parts) {
    notes[part.number] = &part;
  }
  for (const ListedPart& part : listed_) {
    const bool fits =
        part.number <= session.partCount() && part.size == session.spanOf(part.number).length();
    if (!fits) {
      continue;
    }
    const auto note = notes.find(part.number);
    const bool noted = note != notes.end() && bareETag(note->second->etag) == bareETag(part.etag);
    if (order_.trusted && noted) {
      taken_.push_back(*note->second);
    } else if (md5OfETag(part.etag)) {
      doubtful_.push_back(part);
    }
  }
  checkNext();
}

void CMultipartRecovery::checkNext() {
  if (doubtful_.empty()) {
    finish({.what = Found::What::kParts, .parts = std::move(taken_)});
    return;
  }
  const ListedPart part = std::move(doubtful_.back());
  doubtful_.pop_back();
  check_ = std::make_unique<CSourceDigest>(
      dependencies_,
      ReadRequest{.path = order_.path,
                  .version = order_.session.source,
                  .span = order_.session.spanOf(part.number)},
      [this, part](const CSourceDigest::Result& result) { onChecked(part, result); });
}

void CMultipartRecovery::onChecked(const ListedPart& part, const CSourceDigest::Result& result) {
  if (result.problem) {
    finish({.what = Found::What::kSource, .problem = *result.problem});
    return;
  }
  if (md5OfETag(part.etag) == result.md5) {
    taken_.push_back({part.number, part.etag, result.md5});
  }
  checkNext();
}

void CMultipartRecovery::finish(Found found) {
  // A copy, as the receiver may destroy this survey.
  const Done done = done_;
  done(found);
}

}  // namespace zt_transfers
