#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "upload/upload_dependencies.h"
#include "upload/upload_source.h"

namespace zt_transfers {

// Computes the MD5 of a file or of a span of it. Destruction ends it without a report.
//
// Thread: the loop's. `done` is not called from within the constructor; its receiver retires the
// object.
class CSourceDigest final : public CUploadSource::IListener {
 public:
  struct Result {
    std::string md5{};                        // lower-case hexadecimal
    std::optional<AttemptOutcome> failure{};  // why the file cannot be read as it was
  };
  using Done = std::function<void(const Result&)>;

  CSourceDigest(const UploadDependencies& dependencies, ReadRequest readRequest, Done done);
  ~CSourceDigest() { source_->close(); }
  CSourceDigest(const CSourceDigest&) = delete;
  CSourceDigest& operator=(const CSourceDigest&) = delete;

 private:
  void onSourceOpened(const SourceVersion& /*version*/) override { onSourceReady(); }
  void onSourceReady() override;
  void onSourceFailed(const AttemptOutcome& outcome) override { done_({.failure = outcome}); }

  const Done done_;
  std::shared_ptr<CUploadSource> source_;
};

}  // namespace zt_transfers
