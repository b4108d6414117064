#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "engine/upload_session.h"
#include "http/text_request.h"
#include "upload/multipart_messages.h"
#include "upload/source_digest.h"
#include "upload/upload_dependencies.h"

namespace zt_transfers {

// How far a recovery is. CMultipartRecovery::enter is the one function that changes it:
//
//   kListing ──► kChecking ──► kEnded
//      └──────────────────────────▲
enum class RecoveryState : std::uint8_t {
  kListing,   // asks the server for its parts, page by page
  kChecking,  // reads the file's spans of those parts whose digests are in doubt
  kEnded,
};

constexpr bool mayFollow(RecoveryState from, RecoveryState to) {
  return from < to;
}

// Finds out which parts of an earlier multipart upload a server has. A part is taken if the session
// has it with the same ETag, or if its ETag is the digest of what the file holds now.
//
// Thread: the loop's. Destruction ends it without a report.
class CMultipartRecovery {
 public:
  struct Found {
    enum class What {
      kParts,   // the server has these, with the file's content
      kGone,    // the server has forgotten the upload
      kFailed,  // see `response`
      kSource,  // see `failure`
    };
    What what = What::kParts;
    std::vector<SentPart> parts{};
    HttpResponse response{};
    AttemptOutcome failure{};
  };
  // Never called from within begin; its receiver retires the recovery.
  using Done = std::function<void(const Found&)>;

  struct Order {
    UploadSession session;
    std::string path;
    bool trusted = true;  // the session's digests are those of the file's content now
    std::string proxy;
  };

  CMultipartRecovery(const UploadDependencies& dependencies, Order order, Done done)
      : dependencies_(dependencies), order_(std::move(order)), done_(std::move(done)) {}

  // Throws std::invalid_argument for a request that cannot be sent.
  void begin() { list(0); }

 private:
  using State = RecoveryState;

  void enter(State next);
  void list(std::uint32_t after);
  void onListed(const HttpResponse& response);
  void onNoList(const HttpResponse& response);
  void sortOut();
  void checkNext();
  void onChecked(const ListedPart& part, const CSourceDigest::Result& result);
  void finish(const Found& found);

  const UploadDependencies dependencies_;
  const Order order_;
  const Done done_;

  State state_ = State::kListing;
  std::vector<ListedPart> listed_;
  std::uint32_t after_ = 0;  // the page under way lists the parts after this number
  std::vector<ListedPart> doubtful_;
  std::vector<SentPart> taken_;
  std::unique_ptr<CTextRequest> request_;
  std::unique_ptr<CSourceDigest> digest_;
};

}  // namespace zt_transfers
