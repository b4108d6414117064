#pragma once

#include <cstdint>
#include <utility>
#include <variant>

#include "engine/download_resume.h"
#include "engine/upload_session.h"

namespace zt_transfers {

// What an attempt at a file has left for the next one: of a download its partial file, of an upload
// in parts the session on the server.
class TransferResume {
 public:
  TransferResume() = default;
  TransferResume(DownloadResume resume) : what_(std::move(resume)) {}   // NOLINT: is one
  TransferResume(UploadSession session) : what_(std::move(session)) {}  // NOLINT: is one

  bool begun() const {
    return std::visit([](const auto& what) { return what.begun(); }, what_);
  }
  // Bytes of the file that need not be transferred again.
  std::uint64_t bytes() const {
    return isUpload() ? upload().bytesSent() : lengthOf(download().written);
  }

  bool isUpload() const { return std::holds_alternative<UploadSession>(what_); }
  // Only the one that it is; a default one is a download that was not begun.
  const DownloadResume& download() const { return std::get<DownloadResume>(what_); }
  const UploadSession& upload() const { return std::get<UploadSession>(what_); }
  UploadSession& upload() { return std::get<UploadSession>(what_); }

  bool operator==(const TransferResume&) const = default;

 private:
  std::variant<DownloadResume, UploadSession> what_;
};

}  // namespace zt_transfers
