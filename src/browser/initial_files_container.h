#pragma once

#include <string>
#include <vector>

namespace zantrio {

// The items that the application was asked to open before the web application was ready.
// One a process. Thread: filled on the main thread before the message loop runs, afterwards
// used on the UI thread only.
class CInitialFilesContainer {
 public:
  static CInitialFilesContainer& instance();

  // `paths` are absolute, in UTF-8; the flags travel with them to IDragHandler::filesDropped.
  void set(const std::vector<std::string>& paths, bool complete, bool defer);
  // Puts more items behind those that are there.
  void append(const std::vector<std::string>& paths);

  const std::vector<std::string>& files() const { return files_; }
  bool complete() const { return complete_; }
  bool defer() const { return defer_; }

 private:
  std::vector<std::string> files_;
  bool complete_ = true;
  bool defer_ = false;
};

}  // namespace zantrio
