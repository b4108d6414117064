#pragma once

#include <functional>
#include <memory>
#include <string>

#include "engine/attempt.h"
#include "upload/digest_tags.h"
#include "upload/file_request.h"
#include "upload/multipart_aborter.h"
#include "upload/multipart_support.h"
#include "upload/multipart_upload.h"
#include "upload/request_slots.h"
#include "upload/source_digest.h"
#include "upload/upload_tools.h"

namespace zt_transfers {

// One attempt to send one file: with one PUT, or in parts when it is large. What a server does not
// take in parts is sent with one PUT after all.
//
// Thread: the loop's. Destruction ends it without an answer.
class CUploadAttempt final : public CFileRequest::IListener, public CMultipartUpload::IListener {
 public:
  // What all attempts have in common; must outlive them.
  struct Shared {
    UploadDependencies dependencies;
    CMultipartSupport& support;
    CDigestTags& digestTags;
    CRequestSlots& slots;
    CMultipartAborter& aborter;
  };
  class IListener {
   public:
    // May destroy the attempt. The outcome can be part of it.
    virtual void onEnded(AttemptId attemptId, const AttemptOutcome& outcome) = 0;

   protected:
    ~IListener() = default;
  };

  CUploadAttempt(const Shared& shared, StartOrder order, IListener& listener);
  ~CUploadAttempt() { shared_.slots.removeFile(); }
  CUploadAttempt(const CUploadAttempt&) = delete;
  CUploadAttempt& operator=(const CUploadAttempt&) = delete;

  // May end the attempt at once.
  void begin();
  // It is about to be destroyed; what it is only beginning on the server is not to stay there.
  void leave();
  // There may be room for another request.
  void onSlotFree();

 private:
  void sendWhole(std::uint64_t statOnlyFrom);
  bool goesInParts(std::uint64_t size) const;
  bool hasSession() const { return order_.resume.begun() && order_.resume.isUpload(); }
  void compareWith(const std::string& stored);
  void finish(const AttemptOutcome& outcome);

  bool onRequestOpened(CFileRequest& request, const SourceVersion& version) override;
  void onRequestMoved(CFileRequest& request) override { order_.progress->bytes = request.sent(); }
  void onRequestAnswered(CFileRequest& request, const HttpResponse& response) override;
  void onRequestFailed(CFileRequest& request, const Trouble& trouble) override;

  bool takeSlot() override { return shared_.slots.takeExtra(); }
  void giveSlotBack() override { shared_.slots.giveBackExtra(); }
  void onSessionAbandoned(const UploadSession& session) override {
    shared_.dependencies.observer.onOrphaned({.resume = session});
  }
  void onMultipartUnsupported(bool permanent) override;
  void onPartsEnded(const AttemptOutcome& outcome) override { finish(outcome); }

  const Shared shared_;
  const StartOrder order_;
  IListener& listener_;

  std::string path_;
  SourceVersion version_;
  bool refusedParts_ = false;  // it goes with one PUT after all
  std::unique_ptr<CFileRequest> whole_;
  std::unique_ptr<CMultipartUpload> parts_;
  std::unique_ptr<CSourceDigest> digest_;
};

}  // namespace zt_transfers
