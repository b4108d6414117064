#include "upload/multipart_recovery.h"

#include <algorithm>
#include <map>
#include <stdexcept>
#include <utility>

#include "http/etag.h"
#include "upload/multipart_request.h"
#include "upload/multipart_verdict.h"

namespace zt_transfers {

void CMultipartRecovery::enter(State next) {
  if (!mayFollow(state_, next)) {
    throw std::logic_error("a recovery's state " + std::to_string(int(state_)) + " cannot become " +
                           std::to_string(int(next)));
  }
  state_ = next;
  if (next == State::kChecking) {
    sortOut();
    checkNext();
  }
}

void CMultipartRecovery::list(std::uint32_t after) {
  after_ = after;
  request_ = std::make_unique<CTextRequest>(
      dependencies_.loop, dependencies_.log, listRequest(order_.session, after, order_.proxy),
      [this](const HttpResponse& response) { onListed(response); });
}

void CMultipartRecovery::onListed(const HttpResponse& response) {
  dependencies_.loop.retire(std::move(request_));
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
  // A server without pages returns the first one again.
  const bool isNew = !page->parts.empty() && page->parts.front().number > after_;
  if (isNew) {
    listed_.insert(listed_.end(), page->parts.begin(), page->parts.end());
  }
  const bool hasMore = isNew && page->next >= page->parts.back().number;
  if (hasMore && listed_.size() < UploadSession::kMaxParts) {
    list(page->next);
  } else {
    enter(State::kChecking);
  }
}

// If a server cannot list parts, its responses to the parts are trusted.
void CMultipartRecovery::onNoList(const HttpResponse& response) {
  const AttemptOutcome outcome =
      judgeFailure(response, dependencies_.loop.clock().secondsSince1970());
  const bool retryable = outcome.kind == AttemptOutcome::Kind::kRetry && response.status != 501;
  if (response.code != CURLE_OK || retryable || asksForAuthority(response)) {
    finish({.what = Found::What::kFailed, .response = response});
    return;
  }
  listed_.clear();
  for (const SentPart& part : order_.session.parts) {
    listed_.push_back({part.number, order_.session.spanOf(part.number).length(), part.etag});
  }
  enter(State::kChecking);
}

// Each listed part is taken, in doubt, or dropped.
void CMultipartRecovery::sortOut() {
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
}

void CMultipartRecovery::checkNext() {
  if (doubtful_.empty()) {
    finish({.what = Found::What::kParts, .parts = std::move(taken_)});
    return;
  }
  const ListedPart part = std::move(doubtful_.back());
  doubtful_.pop_back();
  digest_ = std::make_unique<CSourceDigest>(
      dependencies_,
      ReadRequest{.path = order_.path,
                  .version = order_.session.source,
                  .span = order_.session.spanOf(part.number)},
      [this, part](const CSourceDigest::Result& result) { onChecked(part, result); });
}

void CMultipartRecovery::onChecked(const ListedPart& part, const CSourceDigest::Result& result) {
  dependencies_.loop.retire(std::move(digest_));
  if (result.failure) {
    finish({.what = Found::What::kSource, .failure = *result.failure});
    return;
  }
  if (md5OfETag(part.etag) == result.md5) {
    taken_.push_back({part.number, part.etag, result.md5});
  }
  checkNext();
}

void CMultipartRecovery::finish(const Found& found) {
  enter(State::kEnded);
  done_(found);
}

}  // namespace zt_transfers
