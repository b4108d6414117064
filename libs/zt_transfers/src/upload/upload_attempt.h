#pragma once

#include <memory>
#include <string>

#include "engine/attempt.h"
#include "upload/file_request.h"
#include "upload/multipart_aborter.h"
#include "upload/multipart_upload.h"
#include "upload/request_slots.h"
#include "upload/server_traits.h"
#include "upload/source_digest.h"
#include "upload/upload_dependencies.h"

namespace zt_transfers {

// One attempt to send one file: with one PUT, or as a multipart upload when the file is large. If
// the server refuses the multipart upload, the file is sent with one PUT.
//
// Thread: the loop's. Destruction ends it without a report.
class CUploadAttempt final : public CFileRequest::IListener, public CMultipartUpload::IListener {
 public:
  // All must outlive the attempt.
  struct Dependencies {
    UploadDependencies upload;
    CServerTraits& servers;
    CRequestSlots& slots;
    CMultipartAborter& aborter;
  };
  class IListener {
   public:
    // The last call; the listener then retires the attempt.
    virtual void onEnded(AttemptId attemptId, const AttemptOutcome& outcome) = 0;

   protected:
    ~IListener() = default;
  };

  CUploadAttempt(const Dependencies& dependencies, StartOrder order, IListener& listener);
  ~CUploadAttempt() { dependencies_.slots.removeFile(); }
  CUploadAttempt(const CUploadAttempt&) = delete;
  CUploadAttempt& operator=(const CUploadAttempt&) = delete;

  // May end the attempt.
  void begin();
  // The attempt is about to be destroyed. Has the server abort a multipart upload that is only
  // being initiated.
  void abandon();
  // A slot for another request may be free.
  void onSlotFree();

 private:
  void sendWhole();
  bool isMultipart(std::uint64_t size) const;
  bool hasSession() const { return order_.resume.begun() && order_.resume.isUpload(); }
  void compareWith(const std::string& stored);
  void finish(const AttemptOutcome& outcome) { listener_.onEnded(order_.attemptId, outcome); }

  bool onRequestOpened(CFileRequest& request, const SourceVersion& version) override;
  void onRequestMoved(CFileRequest& request) override { order_.progress->bytes = request.sent(); }
  void onRequestAnswered(CFileRequest& request, const HttpResponse& response) override;
  void onRequestFailed(CFileRequest& /*request*/, const AttemptOutcome& outcome) override {
    finish(outcome);
  }

  void onSessionAbandoned(const UploadSession& session) override {
    dependencies_.upload.observer.onOrphaned({.resume = session});
  }
  void onMultipartUnsupported(bool permanent) override;
  void onMultipartEnded(const AttemptOutcome& outcome) override { finish(outcome); }

  const Dependencies dependencies_;
  const StartOrder order_;
  IListener& listener_;

  std::string path_;
  SourceVersion version_;
  bool multipartRefused_ = false;
  std::unique_ptr<CFileRequest> whole_;
  std::unique_ptr<CMultipartUpload> multipart_;
  std::unique_ptr<CSourceDigest> digest_;
};

}  // namespace zt_transfers
