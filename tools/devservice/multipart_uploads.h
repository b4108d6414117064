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

// A part of a file that has arrived.
struct UploadedPart {
  std::uint64_t size = 0;
  std::string md5;  // hexadecimal
};

// What a client claims to have sent.
struct PartClaim {
  unsigned number = 0;
  std::string etag;  // without its quotes
};

// A file put together from its parts.
struct AssembledFile {
  std::uint64_t size = 0;
  std::string md5;
  std::string etag;  // MD5 of the parts' MD5s, a dash, their number
};

// Uploads in parts that are under way, in memory and on disk, so that a restarted service goes on:
//   DIR/multipart/<upload>/upload.json     what the upload is for
//   DIR/multipart/<upload>/<number>-<md5>  a part
//
// Thread: any. Operations on what is not there throw CHttpError with the status and the code that
// object stores answer.
class CMultipartUploads {
 public:
  using Parts = std::map<unsigned, UploadedPart>;  // by number

  static constexpr unsigned kLargestPartNumber = 10'000;

  // Loads what is there. `smallestPart`: bytes that every part but the last must have.
  // Throws std::system_error when the folder cannot be used.
  CMultipartUploads(std::filesystem::path folder, std::uint64_t smallestPart);

  // Begins an upload of a message's file; gives its id.
  std::string create(const std::string& bucketId, const std::string& path);
  // Throws (404 NoSuchUpload) unless the upload is under way for that file.
  void expect(const std::string& uploadId, const std::string& bucketId,
              const std::string& path) const;
  // Takes over a part that has arrived completely; replaces an earlier one of that number.
  void accept(const std::string& uploadId, unsigned number, const std::filesystem::path& incoming,
              const UploadedPart& part);
  Parts parts(const std::string& uploadId) const;
  // Writes the claimed parts one after the other to `target`, closes it, calls `take`, and forgets
  // the upload. While that lasts the upload is not there for anyone else; it is again when one of
  // the two throws.
  void complete(const std::string& uploadId, const std::vector<PartClaim>& claims, CFile& target,
                const std::function<void(const AssembledFile&)>& take);
  // Forgets an upload and its parts. Ids that are not there are ignored.
  void remove(const std::string& uploadId);
  // Forgets all uploads of a message.
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
  Parts begin(const std::string& uploadId, const std::vector<PartClaim>& claims);
  void check(const Parts& parts, const std::vector<PartClaim>& claims) const;

  const std::filesystem::path folder_;
  const std::uint64_t smallestPart_;
  mutable std::mutex mutex_;
  // Guarded by mutex_.
  std::map<std::string, Upload> uploads_;
};

}  // namespace zantrio::devservice
