#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "engine/attempt.h"
#include "upload/file_request.h"
#include "upload/multipart_recovery.h"
#include "upload/part_sender.h"
#include "upload/store_request.h"
#include "upload/upload_tools.h"

namespace zt_transfers {

// One attempt to send one file in parts:
//
//   surveying ──► sending ──► source ──► completing ──► done
//       │ gone       ▲      unchanged?        │ gone
//       ▼            │                        ▼
//   initiating ──────┘ ◄───────────────── looking up ──► done
//
// It begins with surveying if an attempt before has left a session, else with initiating. Looking
// up sees whether the parts were put together before, without an answer having come. What is left
// at the end, and kept in the order's progress all the time, is the session.
//
// Thread: the loop's, on which the listener is called, too. Destruction ends it without an answer.
class CMultipartUpload final : public CPartSender::IListener {
 public:
  class IListener : public CPartSender::ISlots {
   public:
    virtual void onSessionAbandoned(const UploadSession& session) = 0;
    // Both may destroy the upload. `permanent`: the server does not know uploads in parts at all.
    virtual void onMultipartUnsupported(bool permanent) = 0;
    virtual void onPartsEnded(const AttemptOutcome& outcome) = 0;

   protected:
    ~IListener() = default;
  };

  // `order` and `listener` must outlive it. `version`: of the source, whose path this is.
  CMultipartUpload(const UploadDependencies& dependencies, const StartOrder& order,
                   std::string path, const SourceVersion& version, IListener& listener);
  CMultipartUpload(const CMultipartUpload&) = delete;
  CMultipartUpload& operator=(const CMultipartUpload&) = delete;

  // May end it at once.
  void begin();
  // There may be room for another request.
  void onSlotFree() { sender_.fill(); }
  // Its request to begin an upload, if that is under way, with the place that it is for.
  std::unique_ptr<CStoreRequest> takeInitiation() { return std::move(initiation_); }
  const UploadSession& session() const { return session_; }

 private:
  using OnResponse = void (CMultipartUpload::*)(const HttpResponse&);

  void takeUp(UploadSession session);
  void startAnew();
  void call(std::unique_ptr<CStoreRequest>& slot, CStoreRequest::Request request,
            OnResponse onResponse);
  void onInitiated(const HttpResponse& response);
  void onRecovered(const CMultipartRecovery::Found& found);
  void onGone();
  void flushThen(void (CMultipartUpload::*next)());
  void send();
  void complete();
  void onCompleted(const HttpResponse& response);
  void lookUp();
  void onLookedUp(const HttpResponse& response);

  void onPartSent(const SentPart& part) override;
  void onAllPartsSent() override;
  void onSendingEnded(const CPartSender::End& ending) override;
  void onBytesMoved() override;

  void add(const SentPart& part);
  void dropSession();
  void fail(const HttpResponse& response, const AttemptOutcome& outcome);
  void failSource(const Trouble& trouble);
  bool wentOn() const;
  void end(AttemptOutcome outcome);
  std::int64_t now() const { return dependencies_.loop.clock().secondsSince1970(); }

  const UploadDependencies dependencies_;
  const StartOrder& order_;
  const std::string path_;
  const SourceVersion version_;
  IListener& listener_;

  UploadSession session_;
  std::uint64_t bytesSent_ = 0;  // of the session's parts
  bool progressed_ = false;
  bool askedToComplete_ = false;  // in this attempt
  TimePoint noted_{};

  std::unique_ptr<CStoreRequest> call_;
  std::unique_ptr<CStoreRequest> initiation_;
  std::unique_ptr<CMultipartRecovery> recovery_;
  CPartSender sender_;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace zt_transfers
