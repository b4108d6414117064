#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "devservice/file_io.h"
#include "devservice/message.h"

namespace zantrio::devservice {

// Keeps a message in its folder, so that a restarted service continues where it stopped:
//   message.json    everything except the files; replaced on every change
//   journal.jsonl   one line per event of a file; only appended to
// A line that a crash truncated is ignored. Throws std::system_error.
class CMessageJournal {
 public:
  explicit CMessageJournal(std::filesystem::path folder);

  void saveMessage(const CMessage& message);
  void announced(const std::vector<MessageFile>& files);
  void arrived(const MessageFile& file);
  void removed(const MessageFile& file);
  void deleted(const MessageFile& file);

  // The stored message; null if the folder has none.
  static std::unique_ptr<CMessage> load(const std::filesystem::path& folder);

 private:
  void append(const std::string& lines);

  std::filesystem::path folder_;
  std::unique_ptr<CFile> file_;
};

}  // namespace zantrio::devservice
