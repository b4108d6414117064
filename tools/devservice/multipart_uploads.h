#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "devservice/file_io.h"

namespace zantrio::devservice {

// A received part of a file.
struct UploadedPart {
  std::uint64_t size = 0;
  std::string md5;  // hexadecimal
};

// A part as listed by a client that completes an upload.
struct ListedPart {
  unsigned number = 0;
  std::string etag;  // without its quotes
};

// A file assembled from its parts.
struct AssembledFile {
  std::uint64_t size = 0;
  std::string md5;
  std::string etag;  // MD5 of the parts' MD5s, a dash, their number
};

// The running multipart uploads, in memory and on disk, so that a restarted service continues:
//   DIR/multipart/<upload>/upload.json     the upload's file
//   DIR/multipart/<upload>/<number>-<md5>  a part
//
// Thread: any. Operations on missing uploads throw CHttpError with the status and code of object
// stores.
class CMultipartUploads {
 public:
  using Parts = std::map<unsigned, UploadedPart>;  // by number

  static constexpr unsigned kMaxPartNumber = 10'000;

  // Loads the folder. `minPartSize`: minimum bytes of every part except the last.
  // Throws std::system_error if the folder cannot be used.
  CMultipartUploads(std::filesystem::path folder, std::uint64_t minPartSize);

  // Begins an upload of a message's file; returns its id.
  std::string create(const std::string& bucketId, const std::string& path);
  // Throws (404 NoSuchUpload) unless the upload is running for that file.
  void requireUpload(const std::string& uploadId, const std::string& bucketId,
                     const std::string& path) const;
  // Moves a complete incoming part to its place; replaces an earlier one of that number.
  void accept(const std::string& uploadId, unsigned number, const std::filesystem::path& incoming,
              const UploadedPart& part);
  Parts parts(const std::string& uploadId) const;
  // Writes the listed parts in order to `target`, closes it, calls `onAssembled`, and removes the
  // upload. Meanwhile other requests do not see the upload; if a step throws, they see it again.
  void complete(const std::string& uploadId, const std::vector<ListedPart>& listedParts,
                CFile& target, const std::function<void(const AssembledFile&)>& onAssembled);
  // Removes an upload and its parts. Unknown ids are ignored.
  void remove(const std::string& uploadId);
  // Removes all uploads of a message.
  void removeAllOf(const std::string& bucketId);

 private:
  struct Upload {
    std::string bucketId;
    std::string path;
    Parts parts;
    bool completing = false;
  };

  void load(const std::filesystem::path& folder);
  std::filesystem::path folderOf(const std::string& uploadId) const;
  Upload& find(const std::string& uploadId);
  const Upload& find(const std::string& uploadId) const;
  Parts begin(const std::string& uploadId, const std::vector<ListedPart>& listedParts);
  void check(const Parts& parts, const std::vector<ListedPart>& listedParts) const;

  const std::filesystem::path folder_;
  const std::uint64_t minPartSize_;
  mutable std::mutex mutex_;
  // Guarded by mutex_.
  std::map<std::string, Upload> uploads_;
};

}  // namespace zantrio::devservice
