#pragma once

#include <string>
#include <vector>

namespace zantrio {

// The items that the application was asked to open before the web application was ready. One per
// process. Thread: main until the message loop runs, then UI.
class CInitialFilesContainer {
 public:
  static CInitialFilesContainer& instance();

  // `paths` are absolute, in UTF-8. The flags are passed to IDragHandler::filesDropped.
  void set(const std::vector<std::string>& paths, bool complete, bool defer);
  // Appends items.
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
