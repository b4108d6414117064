#include "devservice/message_store.h"

#include <Poco/Timestamp.h>

#include <ctime>
#include <stdexcept>
#include <utility>

#include "devservice/http_error.h"
#include "devservice/md5.h"

namespace zantrio::devservice {

namespace fs = std::filesystem;

namespace {

std::int64_t nowMilliseconds() {
  return Poco::Timestamp().epochMicroseconds() / 1000;
}

[[noreturn]] void noSuchFile(const std::string& path) {
  throw CHttpError(404, "no_such_file", "The message has no file \"" + printable(path) + "\".");
}

void prepare(const fs::path& folder) {
  try {
    fs::create_directories(folder / "messages");
    fs::remove_all(folder / "incoming");  // left by a killed service
    fs::create_directories(folder / "incoming");
    const fs::path probe = folder / "incoming/probe";
    CFile::create(probe).close();
    fs::remove(probe);
  } catch (const std::system_error& error) {
    throw std::runtime_error("the data folder " + folder.string() +
                             " cannot be used: " + error.code().message());
  }
}

}  // namespace

CMessageStore::CMessageStore(fs::path folder) : folder_(fs::absolute(folder)) {
  prepare(folder_);
  for (const auto& entry : fs::directory_iterator(folder_ / "messages")) {
    if (auto message = CMessageJournal::load(entry.path())) {
      const std::string id = entry.path().filename().string();
      message->id = id;
      entries_[id] =
          std::make_unique<Entry>(Entry{std::move(*message), CMessageJournal(entry.path()), {}});
    }
  }
}

CMessage CMessageStore::create(const NewMessage& wanted) {
  const auto now = static_cast<std::uint64_t>(std::time(nullptr));
  CMessage message;
  message.id = randomHex(8);
  message.token = randomHex(16);
  message.tokenExpires = now + wanted.tokenLifetimeSeconds;
  message.subject = wanted.subject;
  message.text = wanted.text;
  message.sender = wanted.sender;
  message.recipients = wanted.recipients;
  message.created = nowMilliseconds();
  message.expires = now + wanted.lifetimeSeconds;
  const fs::path folder = folderOf(message.id);
  fs::create_directories(folder / "files");
  CMessageJournal journal(folder);
  journal.saveMessage(message);

  const std::lock_guard lock(mutex_);
  entries_[message.id] = std::make_unique<Entry>(Entry{message, std::move(journal), {}});
  return message;
}

Json::Value CMessageStore::list() const {
  const std::lock_guard lock(mutex_);
  Json::Value all(Json::arrayValue);
  for (const auto& [id, entry] : entries_) {
    all.append(toJson(entry->message));
  }
  return all;
}

Json::Value CMessageStore::listReceived() const {
  const std::lock_guard lock(mutex_);
  Json::Value all(Json::arrayValue);
  for (const auto& [id, entry] : entries_) {
    if (entry->message.state == CMessage::State::kCompleted) {
      all.append(toJson(entry->message));
    }
  }
  return all;
}

Json::Value CMessageStore::describe(const std::string& bucketId) const {
  const std::lock_guard lock(mutex_);
  return toJson(find(bucketId).message);
}

std::vector<MessageFile> CMessageStore::files(const std::string& bucketId) const {
  const std::lock_guard lock(mutex_);
  std::vector<MessageFile> files;
  for (const MessageFile& file : find(bucketId).message.files()) {
    if (!file.removed) {
      files.push_back(file);
    }
  }
  return files;
}

std::vector<MessageFile> CMessageStore::filesAfter(const std::string& bucketId, std::size_t after,
                                                   std::size_t count) const {
  const std::lock_guard lock(mutex_);
  return find(bucketId).message.filesAfter(after, count);
}

std::vector<MessageFile> CMessageStore::filesWithIds(const std::string& bucketId,
                                                     const std::vector<std::string>& ids) const {
  const std::lock_guard lock(mutex_);
  return find(bucketId).message.filesWithIds(ids);
}

std::vector<MessageFile> CMessageStore::announce(const std::string& bucketId,
                                                 const std::vector<Announcement>& announcements) {
  const std::lock_guard lock(mutex_);
  Entry& entry = findOpen(bucketId);
  std::vector<MessageFile> files;
  files.reserve(announcements.size());
  for (const Announcement& announcement : announcements) {
    files.push_back(
        entry.message.announce(announcement.path, announcement.size, announcement.modified));
  }
  entry.journal.announced(files);
  return files;
}

void CMessageStore::removeFile(const std::string& bucketId, const std::string& fileId) {
  const std::lock_guard lock(mutex_);
  Entry& entry = findOpen(bucketId);
  MessageFile* file = entry.message.byId(fileId);
  if (!file) {
    throw CHttpError(404, "no_such_file",
                     "The message has no file with the id \"" + printable(fileId) + "\".");
  }
  entry.journal.removed(*file);
  fs::remove(folderOf(bucketId) / "files" / file->path);
  file->removed = true;
  file->arrived = false;
}

Json::Value CMessageStore::complete(const std::string& bucketId) {
  const std::lock_guard lock(mutex_);
  Entry& entry = find(bucketId);
  CMessage& message = entry.message;
  if (message.state == CMessage::State::kCancelled) {
    throw CHttpError(410, "cancelled", "The message was cancelled.");
  }
  const CMessage::Totals totals = message.totals();
  if (totals.arrivedFiles < totals.files) {
    const auto missing = std::to_string(totals.files - totals.arrivedFiles);
    throw CHttpError(
        409, "files_missing",
        missing + " of " + std::to_string(totals.files) + " files have not arrived yet.");
  }
  message.state = CMessage::State::kCompleted;
  entry.journal.saveMessage(message);
  return toJson(message);
}

void CMessageStore::cancel(const std::string& bucketId) {
  const std::lock_guard lock(mutex_);
  Entry& entry = findOpen(bucketId);
  entry.message.state = CMessage::State::kCancelled;
  entry.journal.saveMessage(entry.message);
  fs::remove_all(folderOf(bucketId) / "files");
}

void CMessageStore::authorize(const std::string& bucketId, const std::string& token,
                              bool forWriting) const {
  const std::lock_guard lock(mutex_);
  const CMessage& message = (forWriting ? findOpen(bucketId) : find(bucketId)).message;
  if (token != message.token) {
    throw CHttpError(403, "wrong_token",
                     token.empty() ? "The request has no token." : "The token is wrong.");
  }
  if (message.tokenExpires < static_cast<std::uint64_t>(std::time(nullptr))) {
    throw CHttpError(403, "token_expired", "The token has expired.");
  }
}

void CMessageStore::requireReceived(const std::string& bucketId) const {
  const std::lock_guard lock(mutex_);
  const CMessage& message = find(bucketId).message;
  if (message.state != CMessage::State::kCompleted) {
    throw CHttpError(404, "no_such_message",
                     "The message \"" + printable(bucketId) + "\" has not been received.");
  }
  if (message.expires < static_cast<std::uint64_t>(std::time(nullptr))) {
    throw CHttpError(410, "expired", "The message has expired; its files are gone.");
  }
}

std::pair<fs::path, MessageFile> CMessageStore::arrivedFile(const std::string& bucketId,
                                                            const std::string& path) const {
  const std::lock_guard lock(mutex_);
  const MessageFile* file = find(bucketId).message.byPath(path);
  if (!file || !file->arrived) {
    noSuchFile(path);
  }
  return {folderOf(bucketId) / "files" / path, *file};
}

void CMessageStore::requireAnnounced(const std::string& bucketId, const std::string& path) const {
  const std::lock_guard lock(mutex_);
  if (!findOpen(bucketId).message.byPath(path)) {
    noSuchFile(path);
  }
}

fs::path CMessageStore::incomingPath() {
  return folder_ / "incoming" / (std::to_string(++lastIncoming_) + ".part");
}

void CMessageStore::accept(const std::string& bucketId, const std::string& path,
                           const fs::path& incoming, const ArrivedContent& content) {
  const std::lock_guard lock(mutex_);
  Entry& entry = findOpen(bucketId);
  MessageFile* file = entry.message.byPath(path);
  if (!file) {
    noSuchFile(path);
  }
  const fs::path target = folderOf(bucketId) / "files" / path;
  if (entry.folders.insert(target.parent_path().string()).second) {
    fs::create_directories(target.parent_path());
  }
  fs::rename(incoming, target);
  file->arrived = true;
  file->arrivedSize = content.size;
  file->md5 = content.md5;
  file->etag = content.etag;
  entry.journal.arrived(*file);
}

void CMessageStore::deleteArrived(const std::string& bucketId, const std::string& path) {
  const std::lock_guard lock(mutex_);
  Entry& entry = findOpen(bucketId);
  MessageFile* file = entry.message.byPath(path);
  if (file && file->arrived) {
    entry.journal.deleted(*file);
    fs::remove(folderOf(bucketId) / "files" / path);
    file->arrived = false;
  }
}

CMessage::Totals CMessageStore::totals(std::size_t& messages) const {
  const std::lock_guard lock(mutex_);
  CMessage::Totals sum;
  for (const auto& [id, entry] : entries_) {
    const CMessage::Totals totals = entry->message.totals();
    sum.files += totals.files;
    sum.bytes += totals.bytes;
    sum.arrivedFiles += totals.arrivedFiles;
    sum.arrivedBytes += totals.arrivedBytes;
  }
  messages = entries_.size();
  return sum;
}

fs::path CMessageStore::folderOf(const std::string& bucketId) const {
  return folder_ / "messages" / bucketId;
}

CMessageStore::Entry& CMessageStore::find(const std::string& bucketId) const {
  const auto found = entries_.find(bucketId);
  if (found == entries_.end()) {
    throw CHttpError(404, "no_such_message",
                     "There is no message \"" + printable(bucketId) + "\".");
  }
  return *found->second;
}

CMessageStore::Entry& CMessageStore::findOpen(const std::string& bucketId) const {
  Entry& entry = find(bucketId);
  if (entry.message.state == CMessage::State::kCancelled) {
    throw CHttpError(410, "cancelled", "The message was cancelled.");
  }
  if (entry.message.state == CMessage::State::kCompleted) {
    throw CHttpError(409, "completed", "The message is complete; nothing more can be added.");
  }
  return entry;
}

}  // namespace zantrio::devservice
