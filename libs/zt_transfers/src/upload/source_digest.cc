#include "upload/source_digest.h"

#include <utility>

namespace zt_transfers {
namespace {

SourceWish hashed(SourceWish wish) {
  wish.hash = true;
  return wish;
}

}  // namespace

CSourceDigest::CSourceDigest(const UploadTools& tools, SourceWish wish, Done done)
    : done_(std::move(done)),
      source_(
          std::make_shared<CUploadSource>(tools.loop, tools.pool, hashed(std::move(wish)), *this)) {
  source_->open();
}

void CSourceDigest::onSourceReady() {
  source_->skip();
  if (source_->readAll()) {
    finish({.md5 = source_->md5()});
  }
}

void CSourceDigest::finish(const Result& result) {
  // A copy, as the receiver may destroy this check.
  const Done done = done_;
  done(result);
}

}  // namespace zt_transfers
