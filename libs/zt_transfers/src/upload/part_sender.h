#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "engine/attempt.h"
#include "upload/file_request.h"
#include "upload/request_slots.h"
#include "upload/upload_dependencies.h"

namespace zt_transfers {

// Sends parts of a file, several at a time. After a failure no further parts are begun; those that
// are under way may still arrive before it ends.
//
// Thread: the loop's, on which the listener is called, too. Destruction ends it without a report.
class CPartSender final : public CFileRequest::IListener {
 public:
  static constexpr std::size_t kMaxConcurrent = 4;

  struct End {
    enum class Why {
      kGone,     // the server has forgotten the upload
      kSource,   // the file has changed or can never be read
      kRefused,  // permanently
      kRenew,    // the authorisation must be renewed first
      kLater,    // another attempt may succeed
    };
    Why why = Why::kLater;
    AttemptOutcome outcome{};
  };

  class IListener {
   public:
    virtual void onPartSent(const SentPart& part) = 0;
    // Each of these is the last call until the next begin.
    virtual void onAllPartsSent() = 0;
    virtual void onSendingEnded(const End& end) = 0;
    // bytesUnderWay() has changed.
    virtual void onBytesMoved() = 0;

   protected:
    ~IListener() = default;
  };

  // All must outlive it.
  CPartSender(const UploadDependencies& dependencies, const StartOrder& order, CRequestSlots& slots,
              IListener& listener)
      : dependencies_(dependencies), order_(order), slots_(slots), listener_(listener) {}
  ~CPartSender();
  CPartSender(const CPartSender&) = delete;
  CPartSender& operator=(const CPartSender&) = delete;

  // Sends the parts of the session, which must outlive the sender, with these numbers. May end it.
  void begin(const UploadSession& session, std::string path, std::set<std::uint32_t> numbers);
  // Begins as many parts as there are slots for.
  void fill();

  std::uint64_t bytesUnderWay() const;

 private:
  using Active = std::map<std::uint32_t, std::unique_ptr<CFileRequest>>;

  void start(std::uint32_t number);
  void reschedule();
  void releaseSlot();
  void retire(Active::iterator part);
  Active::iterator find(const CFileRequest& request);
  void onRefused(std::uint32_t number, const HttpResponse& response, AttemptOutcome outcome);
  void noteFailure(const AttemptOutcome& outcome);
  void cutOff(End::Why why, const AttemptOutcome& outcome);

  bool onRequestOpened(CFileRequest& /*request*/, const SourceVersion& /*version*/) override {
    return true;
  }
  void onRequestMoved(CFileRequest& /*request*/) override { listener_.onBytesMoved(); }
  void onRequestAnswered(CFileRequest& request, const HttpResponse& response) override;
  void onRequestFailed(CFileRequest& request, const AttemptOutcome& outcome) override;

  const UploadDependencies dependencies_;
  const StartOrder& order_;
  CRequestSlots& slots_;
  IListener& listener_;

  const UploadSession* session_ = nullptr;  // null: not begun, or ended
  std::string path_;
  std::set<std::uint32_t> waiting_;
  Active active_;
  std::size_t slotsTaken_ = 0;
  std::optional<AttemptOutcome> failure_;
};

}  // namespace zt_transfers
