#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "engine/attempt.h"
#include "http/text_request.h"
#include "upload/multipart_recovery.h"
#include "upload/part_sender.h"
#include "upload/session_flush.h"
#include "upload/upload_dependencies.h"

namespace zt_transfers {

// Where a multipart upload stands. CMultipartUpload::enter is the one function that changes it:
//
//   kRecovering ──┬───► kSending ──► kSavingCompletion ──► kCompleting
//     │           │        ▲                                    │
//     │ gone      │        │                                    │ gone
//     ▼           │   kSavingSession                            │
//   kInitiating ──│───────►┘                                    │
//     ▲           ▼                                             ▼
//     └────── kLookingUp ◄──────────────────────────────────────┘
//
// It begins with kRecovering if an earlier attempt has left a session, else with kInitiating.
// Every state can be left for kEnded.
enum class MultipartState : std::uint8_t {
  kNew,
  kRecovering,        // asks the server which parts it has
  kInitiating,        // asks the server for an upload id
  kSavingSession,     // persists the upload id before parts are sent
  kSending,           // parts are sent
  kSavingCompletion,  // persists that completion was requested, before it is
  kCompleting,        // asks the server to put the parts together
  kLookingUp,         // checks whether an earlier request for completion succeeded
  kEnded,
};

constexpr bool mayFollow(MultipartState from, MultipartState to) {
  using State = MultipartState;
  switch (to) {
    case State::kNew:
      return false;
    case State::kRecovering:
      return from == State::kNew;
    case State::kInitiating:
      return from == State::kNew || from == State::kRecovering || from == State::kLookingUp;
    case State::kSavingSession:
      return from == State::kInitiating;
    case State::kSending:
      return from == State::kRecovering || from == State::kSavingSession;
    case State::kSavingCompletion:
      return from == State::kSending;
    case State::kCompleting:
      return from == State::kSavingCompletion;
    case State::kLookingUp:
      return from == State::kRecovering || from == State::kCompleting;
    case State::kEnded:
      return from != State::kEnded;
  }
  return false;
}

// One attempt to send one file as a multipart upload. The session is kept in the order's progress
// all the time and stays there at the end, unless it is of no use any more.
//
// Thread: the loop's, on which the listener is called, too. Destruction ends it without a report.
class CMultipartUpload final : public CPartSender::IListener {
 public:
  class IListener {
   public:
    // The session will not be resumed and is to be aborted.
    virtual void onSessionAbandoned(const UploadSession& session) = 0;
    // Each of these is the last call; the listener then retires the upload. `permanent`: the server
    // supports no multipart uploads at all.
    virtual void onMultipartUnsupported(bool permanent) = 0;
    virtual void onMultipartEnded(const AttemptOutcome& outcome) = 0;

   protected:
    ~IListener() = default;
  };

  // `order`, `slots` and `listener` must outlive it. `path` and `version` describe the source.
  CMultipartUpload(const UploadDependencies& dependencies, const StartOrder& order,
                   std::string path, const SourceVersion& version, CRequestSlots& slots,
                   IListener& listener);
  CMultipartUpload(const CMultipartUpload&) = delete;
  CMultipartUpload& operator=(const CMultipartUpload&) = delete;

  // May end it.
  void begin();
  // A slot for another request may be free.
  void onSlotFree() { sender_.fill(); }
  // The request that initiates the upload, if it is under way; session() says for which URL.
  std::unique_ptr<CTextRequest> takeInitiation();
  const UploadSession& session() const { return session_; }

 private:
  using State = MultipartState;

  void enter(State next);
  bool resumes(const UploadSession& session) const;
  void recover();
  void onRecovered(const CMultipartRecovery::Found& found);
  void onUploadGone();
  void initiate();
  void onInitiated(const HttpResponse& response);
  void saveSession();
  void onSessionSaved(const std::optional<AttemptOutcome>& change);
  void sendMissing();
  void onPartSent(const SentPart& part) override;
  void onAllPartsSent() override;
  void onSendingEnded(const CPartSender::End& ending) override;
  void onBytesMoved() override;
  void onCompleted(const HttpResponse& response);
  void onLookedUp(const HttpResponse& response);

  void request(CTextRequest::Request request,
               void (CMultipartUpload::*onResponse)(const HttpResponse&));
  void abandonSession();
  void dropSession();
  void fail(const HttpResponse& response, const AttemptOutcome& outcome);
  void failSource(const AttemptOutcome& outcome);
  bool madeProgress() const;
  void end(AttemptOutcome outcome);
  std::int64_t now() const { return dependencies_.loop.clock().secondsSince1970(); }

  const UploadDependencies dependencies_;
  const StartOrder& order_;
  const std::string path_;
  const SourceVersion version_;
  IListener& listener_;

  State state_ = State::kNew;
  UploadSession session_;
  std::uint64_t bytesSent_ = 0;   // of the session's parts
  bool partSent_ = false;         // in this attempt
  bool askedToComplete_ = false;  // in this attempt
  bool sameFile_ = true;          // as the one whose parts an earlier attempt has sent
  TimePoint savedAt_{};           // when the session was last persisted

  std::unique_ptr<CTextRequest> request_;
  std::unique_ptr<CMultipartRecovery> recovery_;
  std::unique_ptr<CSessionFlush> flush_;
  CPartSender sender_;
};

}  // namespace zt_transfers
