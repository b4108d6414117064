#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <variant>

#include "engine/download_resume.h"
#include "engine/upload_session.h"

namespace zt_transfers {

// From where the next attempt at a file resumes: a download's partial file, or a multipart upload's
// session on the server.
class TransferResume {
 public:
  TransferResume() = default;
  TransferResume(DownloadResume resume) : what_(std::move(resume)) {}   // NOLINT: converts
  TransferResume(UploadSession session) : what_(std::move(session)) {}  // NOLINT: converts

  bool begun() const {
    return std::visit([](const auto& what) { return what.begun(); }, what_);
  }
  // Bytes of the file that need not be transferred again.
  std::uint64_t bytes() const {
    return isUpload() ? upload().bytesSent() : lengthOf(download().written);
  }

  bool isUpload() const { return std::holds_alternative<UploadSession>(what_); }
  // Call only the one that holds. A default object is a download that was not begun.
  const DownloadResume& download() const { return std::get<DownloadResume>(what_); }
  const UploadSession& upload() const { return std::get<UploadSession>(what_); }
  UploadSession& upload() { return std::get<UploadSession>(what_); }

  bool operator==(const TransferResume&) const = default;

 private:
  std::variant<DownloadResume, UploadSession> what_;
};

using OrphanId = std::uint32_t;

// A partial file or an upload session that will not be resumed.
struct Orphan {
  std::string folder{};  // the group's; downloads only
  TransferResume resume;
  std::int64_t since = 0;  // seconds since 1970

  bool operator==(const Orphan&) const = default;
};

}  // namespace zt_transfers
