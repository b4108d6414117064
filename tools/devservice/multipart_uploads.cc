#include "devservice/multipart_uploads.h"

#include <json/json.h>

#include <charconv>
#include <sstream>
#include <utility>

#include "devservice/background_md5.h"
#include "devservice/http_error.h"
#include "devservice/md5.h"

namespace zantrio::devservice {

namespace fs = std::filesystem;

namespace {

constexpr const char* kUploadFile = "upload.json";
constexpr std::size_t kPiece = 256UL * 1024;

[[noreturn]] void noSuchUpload() {
  throw CHttpError(404, "NoSuchUpload",
                   "There is no such upload; it was completed or aborted, or never begun.");
}

std::string partName(unsigned number, const UploadedPart& part) {
  return std::to_string(number) + "-" + part.md5;
}

// The number at the beginning of a part's file name; 0 for other files.
unsigned partNumber(const std::string& name) {
  unsigned number = 0;
  const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), number);
  return error == std::errc() && end != name.data() + name.size() && *end == '-' ? number : 0;
}

// Appends a part to the target and to `md5`, the digest of the whole target.
void append(const fs::path& path, CFile& target, CBackgroundMd5& md5) {
  const CFile part = CFile::openForReading(path);
  for (std::uint64_t offset = 0;;) {
    const auto buffer = md5.nextBuffer();
    const std::size_t count = part.readAt(buffer, offset);
    if (count == 0) {
      return;
    }
    target.write(buffer.first(count));
    md5.hash(buffer.first(count));
    offset += count;
  }
}

AssembledFile assemble(const fs::path& folder, const std::map<unsigned, UploadedPart>& parts,
                       const std::vector<ListedPart>& listedParts, CFile& target) {
  AssembledFile assembled;
  CBackgroundMd5 md5(kPiece);
  CMd5 md5OfMd5s;
  for (const ListedPart& listed : listedParts) {
    const UploadedPart& part = parts.at(listed.number);
    append(folder / partName(listed.number, part), target, md5);
    const std::string digest = fromHex(part.md5);
    md5OfMd5s.update(digest.data(), digest.size());
    assembled.size += part.size;
  }
  target.close();
  assembled.md5 = toHex(md5.finish());
  assembled.etag = toHex(md5OfMd5s.finish()) + "-" + std::to_string(listedParts.size());
  return assembled;
}

}  // namespace

CMultipartUploads::CMultipartUploads(fs::path folder, std::uint64_t minPartSize)
    : folder_(std::move(folder)), minPartSize_(minPartSize) {
  fs::create_directories(folder_);
  for (const auto& entry : fs::directory_iterator(folder_)) {
    load(entry.path());
  }
}

void CMultipartUploads::load(const fs::path& folder) {
  Json::Value json;
  std::istringstream text(readText(folder / kUploadFile));
  if (!Json::parseFromStream(Json::CharReaderBuilder(), text, &json, nullptr) || !json.isObject()) {
    fs::remove_all(folder);  // the service was killed during its creation; no client knows its id
    return;
  }
  Upload upload{json["bucketId"].asString(), json["path"].asString(), {}, false};
  for (const auto& entry : fs::directory_iterator(folder)) {
    const std::string name = entry.path().filename().string();
    if (const unsigned number = partNumber(name); number > 0) {
      upload.parts[number] = {entry.file_size(), name.substr(name.find('-') + 1)};
    }
  }
  uploads_[folder.filename().string()] = std::move(upload);
}

std::string CMultipartUploads::create(const std::string& bucketId, const std::string& path) {
  std::string id = randomHex(16);
  Json::Value json;
  json["bucketId"] = bucketId;
  json["path"] = path;
  fs::create_directory(folderOf(id));
  replaceText(folderOf(id) / kUploadFile, json.toStyledString());
  const std::lock_guard lock(mutex_);
  uploads_[id] = {bucketId, path, {}, false};
  return id;
}

void CMultipartUploads::requireUpload(const std::string& uploadId, const std::string& bucketId,
                                      const std::string& path) const {
  const std::lock_guard lock(mutex_);
  const Upload& upload = find(uploadId);
  if (upload.bucketId != bucketId || upload.path != path) {
    noSuchUpload();
  }
}

void CMultipartUploads::accept(const std::string& uploadId, unsigned number,
                               const fs::path& incoming, const UploadedPart& part) {
  const std::lock_guard lock(mutex_);
  Upload& upload = find(uploadId);
  if (const auto earlier = upload.parts.find(number); earlier != upload.parts.end()) {
    fs::remove(folderOf(uploadId) / partName(number, earlier->second));
    upload.parts.erase(earlier);
  }
  fs::rename(incoming, folderOf(uploadId) / partName(number, part));
  upload.parts[number] = part;
}

CMultipartUploads::Parts CMultipartUploads::parts(const std::string& uploadId) const {
  const std::lock_guard lock(mutex_);
  return find(uploadId).parts;
}

void CMultipartUploads::complete(const std::string& uploadId,
                                 const std::vector<ListedPart>& listedParts, CFile& target,
                                 const std::function<void(const AssembledFile&)>& onAssembled) {
  const auto parts = begin(uploadId, listedParts);
  try {
    onAssembled(assemble(folderOf(uploadId), parts, listedParts, target));
    remove(uploadId);
  } catch (...) {
    const std::lock_guard lock(mutex_);
    if (const auto upload = uploads_.find(uploadId); upload != uploads_.end()) {
      upload->second.completing = false;
    }
    throw;
  }
}

CMultipartUploads::Parts CMultipartUploads::begin(const std::string& uploadId,
                                                  const std::vector<ListedPart>& listedParts) {
  const std::lock_guard lock(mutex_);
  Upload& upload = find(uploadId);
  check(upload.parts, listedParts);
  upload.completing = true;
  return upload.parts;
}

void CMultipartUploads::check(const Parts& parts,
                              const std::vector<ListedPart>& listedParts) const {
  unsigned last = 0;
  for (const ListedPart& listed : listedParts) {
    if (listed.number <= last) {
      throw CHttpError(400, "InvalidPartOrder", "The parts must be listed in ascending order.");
    }
    last = listed.number;
    const auto part = parts.find(listed.number);
    if (part == parts.end() || part->second.md5 != listed.etag) {
      throw CHttpError(400, "InvalidPart",
                       "Part number " + std::to_string(listed.number) +
                           " has not arrived, or has another ETag than the list says.");
    }
    if (part->second.size < minPartSize_ && listed.number != listedParts.back().number) {
      throw CHttpError(400, "EntityTooSmall",
                       "Part number " + std::to_string(listed.number) + " has only " +
                           std::to_string(part->second.size) +
                           " bytes; only the last may have less "
                           "than " +
                           std::to_string(minPartSize_) + ".");
    }
  }
}

void CMultipartUploads::remove(const std::string& uploadId) {
  const std::lock_guard lock(mutex_);
  if (uploads_.erase(uploadId) > 0) {
    fs::remove_all(folderOf(uploadId));
  }
}

void CMultipartUploads::removeAllOf(const std::string& bucketId) {
  const std::lock_guard lock(mutex_);
  std::erase_if(uploads_, [&](const auto& entry) {
    if (entry.second.bucketId != bucketId || entry.second.completing) {
      return false;
    }
    fs::remove_all(folderOf(entry.first));
    return true;
  });
}

fs::path CMultipartUploads::folderOf(const std::string& uploadId) const {
  return folder_ / uploadId;
}

CMultipartUploads::Upload& CMultipartUploads::find(const std::string& uploadId) {
  return const_cast<Upload&>(std::as_const(*this).find(uploadId));
}

const CMultipartUploads::Upload& CMultipartUploads::find(const std::string& uploadId) const {
  const auto found = uploads_.find(uploadId);
  if (found == uploads_.end() || found->second.completing) {
    noSuchUpload();
  }
  return found->second;
}

}  // namespace zantrio::devservice
