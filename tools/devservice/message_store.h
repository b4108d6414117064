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

// What a sender says of a message.
struct NewMessage {
  std::string subject;
  std::string text;
  std::string sender;
  Json::Value recipients{Json::arrayValue};
  std::uint64_t tokenLifetimeSeconds = 0;
  std::uint64_t lifetimeSeconds = 0;  // of its files
};

// Content of a file that has arrived.
struct ArrivedContent {
  std::uint64_t size = 0;
  std::string md5;   // hexadecimal
  std::string etag;  // without its quotes
};

// What a sender announces of a file.
struct Announcement {
  std::string path;  // where it wants to be, with its name at the end
  std::uint64_t size = 0;
  std::int64_t modified = 0;
};

// All messages, in memory and on disk:
//   DIR/messages/<bucket>/files/<path>   what arrived, under the senders' own names
//   DIR/incoming/                        what is arriving
//
// Thread: any. Operations on what is not there throw CHttpError with the status to answer.
class CMessageStore {
 public:
  // Loads what is there. Throws std::runtime_error with one line for the user when the folder
  // cannot be used.
  explicit CMessageStore(std::filesystem::path folder);

  // Gives the message with its token.
  CMessage create(const NewMessage& wanted);
  Json::Value list() const;
  // The messages that are complete, each as `describe` gives it.
  Json::Value listReceived() const;
  Json::Value describe(const std::string& bucketId) const;
  std::vector<MessageFile> files(const std::string& bucketId) const;
  // As CMessage gives them.
  std::vector<MessageFile> filesBehind(const std::string& bucketId, std::size_t after,
                                       std::size_t count) const;
  std::vector<MessageFile> filesWithIds(const std::string& bucketId,
                                        const std::vector<std::string>& ids) const;
  // Gives the files in the same order, each with its id and its place.
  std::vector<MessageFile> announce(const std::string& bucketId,
                                    const std::vector<Announcement>& announcements);
  void removeFile(const std::string& bucketId, const std::string& fileId);
  // Completes the message once all files are there; throws (409) while some are missing.
  Json::Value complete(const std::string& bucketId);
  // Forgets the files that arrived; nothing more is taken in.
  void cancel(const std::string& bucketId);

  // Throws unless it is the token of the message. `forWriting`: only while it is open.
  void authorize(const std::string& bucketId, const std::string& token, bool forWriting) const;
  // Throws unless the message is complete and its files can still be fetched.
  void expectReceived(const std::string& bucketId) const;
  // Where a file is that has arrived, and its record.
  std::pair<std::filesystem::path, MessageFile> arrivedFile(const std::string& bucketId,
                                                            const std::string& path) const;
  // Throws unless the message expects a file at that path.
  void expectFile(const std::string& bucketId, const std::string& path) const;
  // A name of its own for a file that begins to arrive.
  std::filesystem::path incomingPath();
  // Takes over a file that has arrived completely; replaces an earlier one.
  void accept(const std::string& bucketId, const std::string& path,
              const std::filesystem::path& incoming, const ArrivedContent& content);
  void deleteArrived(const std::string& bucketId, const std::string& path);

  CMessage::Totals totals(std::size_t& messages) const;

 private:
  struct Entry {
    CMessage message;
    CMessageJournal journal;
    std::set<std::string> folders;  // that are known to exist
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
