#include "devservice/message.h"

#include <charconv>
#include <utility>

#include "devservice/http_error.h"

namespace zantrio::devservice {

MessageFile& CMessage::announce(const std::string& wanted, std::uint64_t size,
                                std::int64_t modified) {
  MessageFile file;
  file.id = std::to_string(files_.size() + 1);
  file.path = allocator_.allocate(wanted);
  file.size = size;
  file.modified = modified;
  byPath_[file.path] = files_.size();
  return files_.emplace_back(std::move(file));
}

void CMessage::restore(MessageFile file) {
  file.id = std::to_string(files_.size() + 1);
  allocator_.reserve(file.path);
  byPath_[file.path] = files_.size();
  files_.push_back(std::move(file));
}

MessageFile* CMessage::byPath(const std::string& path) {
  const auto found = byPath_.find(path);
  return found == byPath_.end() || files_[found->second].removed ? nullptr : &files_[found->second];
}

MessageFile* CMessage::byId(const std::string& fileId) {
  std::size_t number = 0;
  const auto [end, error] = std::from_chars(fileId.data(), fileId.data() + fileId.size(), number);
  if (error != std::errc() || end != fileId.data() + fileId.size() || number == 0 ||
      number > files_.size() || files_[number - 1].removed) {
    return nullptr;
  }
  return &files_[number - 1];
}

std::vector<MessageFile> CMessage::filesAfter(std::size_t after, std::size_t count) const {
  std::vector<MessageFile> found;
  for (std::size_t i = after; i < files_.size() && found.size() < count; ++i) {
    if (!files_[i].removed) {
      found.push_back(files_[i]);
    }
  }
  return found;
}

std::vector<MessageFile> CMessage::filesWithIds(const std::vector<std::string>& ids) {
  std::vector<MessageFile> found;
  found.reserve(ids.size());
  for (const std::string& fileId : ids) {
    const MessageFile* file = byId(fileId);
    if (file == nullptr) {
      throw CHttpError(404, "no_such_file",
                       "The message has no file with the id \"" + printable(fileId) + "\".");
    }
    found.push_back(*file);
  }
  return found;
}

CMessage::Totals CMessage::totals() const {
  Totals totals;
  for (const MessageFile& file : files_) {
    if (file.removed) {
      continue;
    }
    ++totals.files;
    totals.bytes += file.size;
    totals.arrivedFiles += file.arrived ? 1 : 0;
    totals.arrivedBytes += file.arrived ? file.arrivedSize : 0;
  }
  return totals;
}

const char* stateName(CMessage::State state) {
  switch (state) {
    case CMessage::State::kCompleted:
      return "completed";
    case CMessage::State::kCancelled:
      return "cancelled";
    case CMessage::State::kOpen:
      break;
  }
  return "open";
}

CMessage::State stateFromName(const std::string& name) {
  if (name == "completed") {
    return CMessage::State::kCompleted;
  }
  return name == "cancelled" ? CMessage::State::kCancelled : CMessage::State::kOpen;
}

Json::Value toJson(const CMessage& message) {
  const CMessage::Totals totals = message.totals();
  Json::Value json;
  json["bucketId"] = message.id;
  json["bucketType"] = "message";
  json["subject"] = message.subject;
  json["text"] = message.text;
  json["sender"] = message.sender;
  json["recipients"] = message.recipients;
  json["state"] = stateName(message.state);
  json["created"] = Json::Int64(message.created);
  json["tokenExpires"] = Json::UInt64(message.tokenExpires);
  json["expires"] = Json::UInt64(message.expires);
  json["files"] = Json::UInt64(totals.files);
  json["bytes"] = Json::UInt64(totals.bytes);
  json["arrivedFiles"] = Json::UInt64(totals.arrivedFiles);
  json["arrivedBytes"] = Json::UInt64(totals.arrivedBytes);
  return json;
}

Json::Value toJson(const MessageFile& file) {
  Json::Value json;
  json["id"] = file.id;
  json["path"] = file.path;
  json["size"] = Json::UInt64(file.size);
  json["modified"] = Json::Int64(file.modified);
  json["arrived"] = file.arrived;
  if (file.arrived) {
    json["arrivedSize"] = Json::UInt64(file.arrivedSize);
    json["md5"] = file.md5;
  }
  return json;
}

}  // namespace zantrio::devservice
