#pragma once

#include <json/json.h>

#include <memory>
#include <string>
#include <vector>

#include "devservice/content.h"
#include "devservice/message_store.h"
#include "devservice/samples.h"

namespace zantrio::devservice {

// What a recipient sees: the messages that are complete (this service delivers everything to
// oneself) and the samples. Thread: any. Operations on what is not there throw CHttpError.
class CReceivedMessages {
 public:
  CReceivedMessages(CMessageStore& store, CSamples& samples) : store_(store), samples_(samples) {}

  // The newest first.
  Json::Value list();
  Json::Value describe(const std::string& bucketId);
  // When the message's files can no longer be fetched, seconds since 1970; 0: always.
  std::uint64_t expires(const std::string& bucketId);
  // At most `count` files behind the one with the id `after` (0: from the beginning).
  std::vector<MessageFile> files(const std::string& bucketId, std::size_t after, std::size_t count);
  std::vector<MessageFile> files(const std::string& bucketId, const std::vector<std::string>& ids);

  struct StoredFile {
    MessageFile record;
    std::unique_ptr<IContent> content;
  };
  // A file that has arrived, also of a message that is not complete yet.
  StoredFile open(const std::string& bucketId, const std::string& path);
  bool isSample(const std::string& bucketId) { return samples_.find(bucketId) != nullptr; }

 private:
  CMessageStore& store_;
  CSamples& samples_;
};

}  // namespace zantrio::devservice
