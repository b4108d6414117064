#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "engine/upload_session.h"
#include "upload/multipart_messages.h"
#include "upload/source_digest.h"
#include "upload/store_request.h"
#include "upload/upload_tools.h"

namespace zt_transfers {

// Finds out which parts of an upload that was begun before a server has:
//
//   listing ──► checking ──► done
//
// Listing asks the server, page by page. What was noted just as the server tells it is taken; of
// the rest the file is read again, and a part is taken if it has the digest that the server tells.
//
// Thread: the loop's. Destruction ends it without an answer.
class CMultipartRecovery {
 public:
  struct Found {
    enum class What {
      kParts,   // these are there, and are what the file holds
      kGone,    // the server has forgotten the upload
      kFailed,  // see the answer
      kSource,  // the file cannot be read as it was; see the problem
    };
    What what = What::kParts;
    std::vector<SentPart> parts{};
    HttpResponse response{};
    Trouble problem{};
  };
  // Never called from within begin; may destroy the survey.
  using Done = std::function<void(const Found&)>;

  struct Order {
    UploadSession session;
    std::string path;
    bool trusted = true;  // the digests in the session are those of what the file holds
    std::string proxy;
  };

  CMultipartRecovery(const UploadDependencies& dependencies, Order order, Done done)
      : dependencies_(dependencies), order_(std::move(order)), done_(std::move(done)) {}

  // Throws std::invalid_argument for a request that cannot be sent.
  void begin() { list(0); }

 private:
  void list(std::uint32_t after);
  void onListed(const HttpResponse& response);
  void onNoList(const HttpResponse& response);
  void compare();
  void checkNext();
  void onChecked(const ListedPart& part, const CSourceDigest::Result& result);
  void finish(Found found);

  const UploadDependencies dependencies_;
  const Order order_;
  const Done done_;

  std::vector<ListedPart> listed_;
  std::uint32_t after_ = 0;  // the number behind which the list under way begins
  std::vector<ListedPart> doubtful_;
  std::vector<SentPart> taken_;
  std::unique_ptr<CStoreRequest> call_;
  std::unique_ptr<CSourceDigest> check_;
};

}  // namespace zt_transfers
