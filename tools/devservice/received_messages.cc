#include "devservice/received_messages.h"

#include <algorithm>

#include "devservice/http_error.h"

namespace zantrio::devservice {

namespace {

[[noreturn]] void noSuchFile(const std::string& name) {
  throw CHttpError(404, "no_such_file", "The message has no file \"" + printable(name) + "\".");
}

}  // namespace

Json::Value CReceivedMessages::list() {
  const Json::Value stored = store_.listReceived();
  std::vector<Json::Value> messages(stored.begin(), stored.end());
  for (const CMessage* sample : samples_.messages()) {
    messages.push_back(toJson(*sample));
  }
  std::stable_sort(messages.begin(), messages.end(), [](const auto& a, const auto& b) {
    return a["created"].asInt64() > b["created"].asInt64();
  });
  Json::Value all(Json::arrayValue);
  for (Json::Value& message : messages) {
    all.append(std::move(message));
  }
  return all;
}

Json::Value CReceivedMessages::describe(const std::string& bucketId) {
  if (const CMessage* sample = samples_.find(bucketId)) {
    return toJson(*sample);
  }
  store_.requireReceived(bucketId);
  return store_.describe(bucketId);
}

std::uint64_t CReceivedMessages::expires(const std::string& bucketId) {
  return describe(bucketId)["expires"].asUInt64();
}

std::vector<MessageFile> CReceivedMessages::files(const std::string& bucketId, std::size_t after,
                                                  std::size_t count) {
  if (CMessage* sample = samples_.find(bucketId)) {
    return sample->filesAfter(after, count);
  }
  store_.requireReceived(bucketId);
  return store_.filesAfter(bucketId, after, count);
}

std::vector<MessageFile> CReceivedMessages::files(const std::string& bucketId,
                                                  const std::vector<std::string>& ids) {
  if (CMessage* sample = samples_.find(bucketId)) {
    return sample->filesWithIds(ids);
  }
  store_.requireReceived(bucketId);
  return store_.filesWithIds(bucketId, ids);
}

CReceivedMessages::StoredFile CReceivedMessages::open(const std::string& bucketId,
                                                      const std::string& path) {
  if (CMessage* sample = samples_.find(bucketId)) {
    const MessageFile* file = sample->byPath(path);
    if (file == nullptr) {
      noSuchFile(path);
    }
    return {*file, samples_.open(bucketId, path)};
  }
  auto [place, record] = store_.arrivedFile(bucketId, path);
  return {std::move(record), std::make_unique<CFileContent>(CFile::openForReading(place))};
}

}  // namespace zantrio::devservice
