#include "upload/multipart_recovery.h"

#include <algorithm>
#include <map>
#include <utility>

#include "http/etag.h"
#include "upload/multipart_request.h"
#include "upload/multipart_verdict.h"

namespace zt_transfers {

void CSessionSurvey::list(std::uint32_t after) {
  after_ = after;
  call_ = std::make_unique<CStoreCall>(tools_.loop, tools_.log,
                                       listRequest(order_.session, after, order_.proxy),
                                       [this](const HttpAnswer& answer) { onListed(answer); });
}

void CSessionSurvey::onListed(const HttpAnswer& answer) {
  // Kept to the end of this, and out of the way of the next one.
  const std::unique_ptr<CStoreCall> finished = std::move(call_);
  if (saysUploadIsGone(answer)) {
    finish({.what = Found::What::kGone});
    return;
  }
  const bool answered = answer.code == CURLE_OK && answer.status == 200;
  const auto page = answered ? partsPageOf(answer.body) : std::nullopt;
  if (!page) {
    onNoList(answer);
    return;
  }
  // A server that does not know of pages gives the first one again.
  const bool isNew = !page->parts.empty() && page->parts.front().number > after_;
  if (isNew) {
    listed_.insert(listed_.end(), page->parts.begin(), page->parts.end());
  }
  const bool goesOn = isNew && page->next >= page->parts.back().number;
  if (goesOn && listed_.size() < UploadSession::kMostParts) {
    list(page->next);
  } else {
    compare();
  }
}

// A server that gives no list is believed what it confirmed for each part.
void CSessionSurvey::onNoList(const HttpAnswer& answer) {
  const AttemptOutcome outcome = judgeFailure(answer, tools_.loop.clock().secondsSince1970());
  const bool later = outcome.kind == AttemptOutcome::Kind::kRetry && answer.status != 501;
  if (answer.code != CURLE_OK || later || asksForAuthority(answer)) {
    finish({.what = Found::What::kFailed, .answer = answer});
    return;
  }
  listed_.clear();
  for (const SentPart& part : order_.session.parts) {
    listed_.push_back({part.number, order_.session.spanOf(part.number).length(), part.etag});
  }
  compare();
}

void CSessionSurvey::compare() {
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

void CSessionSurvey::checkNext() {
  if (doubtful_.empty()) {
    finish({.what = Found::What::kParts, .parts = std::move(taken_)});
    return;
  }
  const ListedPart part = std::move(doubtful_.back());
  doubtful_.pop_back();
  check_ = std::make_unique<CSourceDigest>(
      tools_,
      SourceWish{.path = order_.path,
                 .version = order_.session.source,
                 .span = order_.session.spanOf(part.number)},
      [this, part](const CSourceDigest::Result& result) { onChecked(part, result); });
}

void CSessionSurvey::onChecked(const ListedPart& part, const CSourceDigest::Result& result) {
  if (result.problem) {
    finish({.what = Found::What::kSource, .problem = *result.problem});
    return;
  }
  if (md5OfETag(part.etag) == result.md5) {
    taken_.push_back({part.number, part.etag, result.md5});
  }
  checkNext();
}

void CSessionSurvey::finish(Found found) {
  // A copy, as the receiver may destroy this survey.
  const Done done = done_;
  done(found);
}

}  // namespace zt_transfers
