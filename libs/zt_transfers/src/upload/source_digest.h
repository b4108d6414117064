#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "upload/upload_source.h"
#include "upload/upload_tools.h"

namespace zt_transfers {

// Finds the MD5 of a file or a span of one. Destruction ends it without an answer.
//
// Thread: the loop's. `done` is not called from within the constructor and may destroy the check.
class CSourceDigest final : public CUploadSource::IListener {
 public:
  struct Result {
    std::string md5{};                 // lower-case hexadecimal
    std::optional<Trouble> problem{};  // the file cannot be read as it was, and why
  };
  using Done = std::function<void(const Result&)>;

  CSourceDigest(const UploadDependencies& dependencies, ReadRequest readRequest, Done done);
  ~CSourceDigest() { source_->close(); }
  CSourceDigest(const CSourceDigest&) = delete;
  CSourceDigest& operator=(const CSourceDigest&) = delete;

 private:
  void onSourceOpened(const SourceVersion& /*version*/) override { onSourceReady(); }
  void onSourceReady() override;
  void onSourceFailed(const Trouble& trouble) override { finish({.problem = trouble}); }
  void finish(const Result& result);

  const Done done_;
  std::shared_ptr<CUploadSource> source_;
};

}  // namespace zt_transfers
