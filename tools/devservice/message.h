#pragma once

#include <json/json.h>

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "devservice/names.h"

namespace zantrio::devservice {

// A file of a message, received or not.
struct MessageFile {
  std::string id;
  std::string path;           // below the message's folder
  std::uint64_t size = 0;     // announced, bytes
  std::int64_t modified = 0;  // milliseconds since 1970
  bool removed = false;       // the sender left it out
  bool arrived = false;
  std::uint64_t arrivedSize = 0;
  std::string md5;   // of the received content, hexadecimal
  std::string etag;  // likewise; differs from the MD5 after a multipart upload
};

// A message and its files. Not thread-safe; its store locks it.
class CMessage {
 public:
  enum class State { kOpen, kCompleted, kCancelled };

  std::string id;
  std::string token;
  std::uint64_t tokenExpires = 0;  // seconds since 1970
  std::string subject;
  std::string text;
  std::string sender;
  Json::Value recipients{Json::arrayValue};
  State state = State::kOpen;
  std::int64_t created = 0;   // milliseconds since 1970
  std::uint64_t expires = 0;  // end of the files' availability, seconds since 1970

  // Adds a file with a new id, at the path `wanted` or a numbered one if that is taken.
  MessageFile& announce(const std::string& wanted, std::uint64_t size, std::int64_t modified);
  // Adds a file as it was before a restart.
  void restore(MessageFile file);
  // Null if there is none, or it was removed.
  MessageFile* byPath(const std::string& path);
  MessageFile* byId(const std::string& id);
  const std::vector<MessageFile>& files() const { return files_; }
  // At most `count` files after the one with the id `after` (0: from the beginning).
  std::vector<MessageFile> filesAfter(std::size_t after, std::size_t count) const;
  // The files with those ids, in their order. Throws CHttpError (404) if one does not exist.
  std::vector<MessageFile> filesWithIds(const std::vector<std::string>& ids);

  struct Totals {
    std::uint64_t files = 0, bytes = 0, arrivedFiles = 0, arrivedBytes = 0;
  };
  Totals totals() const;

 private:
  std::vector<MessageFile> files_;
  std::unordered_map<std::string, std::size_t> byPath_;
  CPathAllocator allocator_;
};

const char* stateName(CMessage::State state);
CMessage::State stateFromName(const std::string& name);

// The API's JSON for a message (without its token) and for a file.
Json::Value toJson(const CMessage& message);
Json::Value toJson(const MessageFile& file);

}  // namespace zantrio::devservice
