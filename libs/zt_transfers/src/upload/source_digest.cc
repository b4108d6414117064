#include "upload/source_digest.h"

#include <utility>

namespace zt_transfers {
namespace {

ReadRequest hashed(ReadRequest readRequest) {
  readRequest.hash = true;
  return readRequest;
}

}  // namespace

CSourceDigest::CSourceDigest(const UploadDependencies& dependencies, ReadRequest readRequest,
                             Done done)
    : done_(std::move(done)),
      source_(std::make_shared<CUploadSource>(dependencies.loop, dependencies.pool,
                                              hashed(std::move(readRequest)), *this)) {
  source_->open();
}

void CSourceDigest::onSourceReady() {
  source_->skip();
  if (source_->readAll()) {
    done_({.md5 = source_->md5()});
  }
}

}  // namespace zt_transfers
