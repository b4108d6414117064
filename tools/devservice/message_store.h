#pragma once

#include <json/json.h>

#include <atomic>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "devservice/message.h"
#include "devservice/message_journal.h"

namespace zantrio::devservice {

// A sender's description of a message.
struct NewMessage {
  std::string subject;
  std::string text;
  std::string sender;
  Json::Value recipients{Json::arrayValue};
  std::uint64_t tokenLifetimeSeconds = 0;
  std::uint64_t lifetimeSeconds = 0;  // of its files
};

// The received content of a file.
struct ArrivedContent {
  std::uint64_t size = 0;
  std::string md5;   // hexadecimal
  std::string etag;  // without its quotes
};

// A sender's announcement of a file.
struct Announcement {
  std::string path;  // the wanted path, with the file's name at the end
  std::uint64_t size = 0;
  std::int64_t modified = 0;
};

// All messages, in memory and on disk:
//   DIR/messages/<bucket>/files/<path>   received files, under the senders' own names
//   DIR/incoming/                        incomplete bodies
//
// Thread: any. Operations on missing messages or files throw CHttpError with the status to respond.
class CMessageStore {
 public:
  // Loads the folder. Throws std::runtime_error with one line for the user if the folder cannot be
  // used.
  explicit CMessageStore(std::filesystem::path folder);

  // Returns the message with its token.
  CMessage create(const NewMessage& wanted);
  Json::Value list() const;
  // The complete messages, each as `describe` returns it.
  Json::Value listReceived() const;
  Json::Value describe(const std::string& bucketId) const;
  std::vector<MessageFile> files(const std::string& bucketId) const;
  // As in CMessage.
  std::vector<MessageFile> filesAfter(const std::string& bucketId, std::size_t after,
                                      std::size_t count) const;
  std::vector<MessageFile> filesWithIds(const std::string& bucketId,
                                        const std::vector<std::string>& ids) const;
  // Returns the files in the same order, each with its id and its path.
  std::vector<MessageFile> announce(const std::string& bucketId,
                                    const std::vector<Announcement>& announcements);
  void removeFile(const std::string& bucketId, const std::string& fileId);
  // Completes the message; throws (409) while files are missing.
  Json::Value complete(const std::string& bucketId);
  // Removes the received files; no more are accepted.
  void cancel(const std::string& bucketId);

  // Throws unless `token` is the message's. `forWriting`: also throws unless the message is open.
  void authorize(const std::string& bucketId, const std::string& token, bool forWriting) const;
  // Throws unless the message is complete and its files have not expired.
  void requireReceived(const std::string& bucketId) const;
  // The place of a received file, and its record.
  std::pair<std::filesystem::path, MessageFile> arrivedFile(const std::string& bucketId,
                                                            const std::string& path) const;
  // Throws unless a file was announced at that path.
  void requireAnnounced(const std::string& bucketId, const std::string& path) const;
  // A unique name for an incoming body.
  std::filesystem::path incomingPath();
  // Moves a complete incoming file to its place; replaces an earlier one.
  void accept(const std::string& bucketId, const std::string& path,
              const std::filesystem::path& incoming, const ArrivedContent& content);
  void deleteArrived(const std::string& bucketId, const std::string& path);

  CMessage::Totals totals(std::size_t& messages) const;

 private:
  struct Entry {
    CMessage message;
    CMessageJournal journal;
    std::set<std::string> folders;  // known to exist
  };

  std::filesystem::path folderOf(const std::string& bucketId) const;
  Entry& find(const std::string& bucketId) const;
  Entry& findOpen(const std::string& bucketId) const;

  const std::filesystem::path folder_;
  std::atomic<std::uint64_t> lastIncoming_ = 0;
  mutable std::mutex mutex_;
  // Guarded by mutex_.
  std::map<std::string, std::unique_ptr<Entry>> entries_;
};

}  // namespace zantrio::devservice
