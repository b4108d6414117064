#pragma once

#include <json/json.h>

#include <memory>
#include <string>
#include <vector>

#include "devservice/content.h"
#include "devservice/message_store.h"
#include "devservice/samples.h"

namespace zantrio::devservice {

// A recipient's messages: the complete ones (this service delivers everything to its sender) and
// the samples. Thread: any. Operations on missing messages or files throw CHttpError.
class CReceivedMessages {
 public:
  CReceivedMessages(CMessageStore& store, CSamples& samples) : store_(store), samples_(samples) {}

  // The newest first.
  Json::Value list();
  Json::Value describe(const std::string& bucketId);
  // The end of the files' availability, seconds since 1970; 0: unlimited.
  std::uint64_t expires(const std::string& bucketId);
  // At most `count` files after the one with the id `after` (0: from the beginning).
  std::vector<MessageFile> files(const std::string& bucketId, std::size_t after, std::size_t count);
  std::vector<MessageFile> files(const std::string& bucketId, const std::vector<std::string>& ids);

  struct StoredFile {
    MessageFile record;
    std::unique_ptr<IContent> content;
  };
  // A received file, also of a message that is not complete yet.
  StoredFile open(const std::string& bucketId, const std::string& path);
  bool isSample(const std::string& bucketId) { return samples_.find(bucketId) != nullptr; }

 private:
  CMessageStore& store_;
  CSamples& samples_;
};

}  // namespace zantrio::devservice
