#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "engine/attempt.h"
#include "upload/file_request.h"
#include "upload/upload_tools.h"

namespace zt_transfers {

// Sends parts of a file, some of them at a time. When one fails no further ones are begun, but
// those that are under way may arrive; then it ends.
//
// Thread: the loop's, on which the listener is called, too. Destruction ends it without an answer.
class CPartSender final : public CFileRequest::IListener {
 public:
  static constexpr std::size_t kMaxConcurrent = 4;

  // Who allows more than one request at a time. Neither call leads back here.
  class ISlots {
   public:
    virtual bool takeSlot() = 0;
    virtual void giveSlotBack() = 0;

   protected:
    ~ISlots() = default;
  };

  struct End {
    enum class Why {
      kGone,     // the server has forgotten the upload
      kSource,   // the file is not what it was
      kRefused,  // for good
      kRenew,    // until what authorises it is renewed
      kLater,    // may go better next time
    };
    Why why = Why::kLater;
    AttemptOutcome outcome{};
  };

  class IListener {
   public:
    virtual void onPartSent(const SentPart& part) = 0;
    // After either of these nothing more is sent. May destroy the sender.
    virtual void onAllPartsSent() = 0;
    virtual void onSendingEnded(const End& end) = 0;
    // What bytesUnderWay() gives has changed.
    virtual void onBytesMoved() = 0;

   protected:
    ~IListener() = default;
  };

  // All must outlive it. `order` says how.
  CPartSender(const UploadDependencies& dependencies, const StartOrder& order, ISlots& slots,
              IListener& listener)
      : dependencies_(dependencies), order_(order), slots_(slots), listener_(listener) {}
  ~CPartSender();
  CPartSender(const CPartSender&) = delete;
  CPartSender& operator=(const CPartSender&) = delete;

  // `session`, which must outlive the sender, says what the parts are, the set which of them are to
  // be sent. It can end at once.
  void begin(const UploadSession& session, std::string path, std::set<std::uint32_t> numbers);
  // Begins as many as there is room for.
  void fill();

  std::uint64_t bytesUnderWay() const;

 private:
  using Active = std::map<std::uint32_t, std::unique_ptr<CFileRequest>>;

  void start(std::uint32_t number);
  void reschedule();
  void remove(Active::iterator part);
  Active::iterator find(const CFileRequest& request);
  void onRefused(std::uint32_t number, const HttpResponse& response, AttemptOutcome outcome);
  void noteTrouble(const AttemptOutcome& outcome);
  void cutOff(End::Why why, const AttemptOutcome& outcome);

  bool onRequestOpened(CFileRequest& /*request*/, const SourceVersion& /*version*/) override {
    return true;
  }
  void onRequestMoved(CFileRequest& /*request*/) override { listener_.onBytesMoved(); }
  void onRequestAnswered(CFileRequest& request, const HttpResponse& response) override;
  void onRequestFailed(CFileRequest& request, const Trouble& trouble) override;

  const UploadDependencies dependencies_;
  const StartOrder& order_;
  ISlots& slots_;
  IListener& listener_;

  const UploadSession* session_ = nullptr;  // null: has not begun, or has ended
  std::string path_;
  std::set<std::uint32_t> waiting_;
  Active active_;
  std::size_t slotsTaken_ = 0;
  std::optional<AttemptOutcome> trouble_;
};

}  // namespace zt_transfers
